import { effect } from '@preact/signals';
import type { RefObject } from 'preact';
import { useLayoutEffect, useRef } from 'preact/hooks';

/** What the page's charts are written in; the canvas knows no style sheets. */
export const chartFont = '12px system-ui, "Segoe UI", sans-serif';

/**
 * A canvas as large as its element, drawn anew, once a frame at most, when its size or a signal that `draw` reads
 * changes.
 */
export function useCanvas(
  draw: (context: CanvasRenderingContext2D, width: number, height: number) => void,
): RefObject<HTMLCanvasElement | null> {
  const canvas = useRef<HTMLCanvasElement>(null);
  const latest = useRef(draw);
  latest.current = draw;
  useLayoutEffect(() => {
    const element = canvas.current!;
    const context = element.getContext('2d', { alpha: false })!;
    let frame = 0;
    let stop = () => {};
    const paint = () => {
      cancelAnimationFrame(frame);
      frame = 0;
      const { clientWidth, clientHeight } = element;
      const ratio = devicePixelRatio;
      const width = Math.max(1, Math.round(clientWidth * ratio));
      const height = Math.max(1, Math.round(clientHeight * ratio));
      if (element.width !== width) element.width = width;
      if (element.height !== height) element.height = height;
      stop();
      let first = true;
      // The first run draws; a later one says that something has changed.
      stop = effect(() => {
        if (!first) return ask();
        first = false;
        context.setTransform(ratio, 0, 0, ratio, 0, 0);
        latest.current(context, clientWidth, clientHeight);
      });
    };
    const ask = () => {
      frame ||= requestAnimationFrame(paint);
    };
    // It tells of the first size, too, and of each before the page is painted with it.
    const observer = new ResizeObserver(paint);
    observer.observe(element);
    return () => {
      observer.disconnect();
      cancelAnimationFrame(frame);
      stop();
    };
  }, []);
  return canvas;
}
