// What the pointer does on a chart: one finger or the mouse moves, two fingers zoom, Shift measures.
import { pinched, type ChartState } from './chart_state';

export interface Gestures {
  chartState: ChartState;
  timeAt: (x: number) => number;
  /** A span is being chosen with Shift, or has been. */
  onSpan: (from: number, to: number, chosen: boolean) => void;
  /** The pointer was pressed and released in one place. */
  onClick: (event: PointerEvent) => void;
}

interface Finger {
  x: number;
  y: number;
}

/** Takes the pointer from a press on to the last release. */
export class Pointers {
  private readonly fingers = new Map<number, Finger>();
  private start: { x: number; y: number; from: number; to: number; scroll: number } | undefined;
  private pinch: { places: [number, number]; from: number; to: number } | undefined;
  private measuring = false;
  private moved = false;

  down(event: PointerEvent, { chartState }: Gestures): void {
    if (event.button !== 0) return;
    const element = event.currentTarget as HTMLElement;
    element.setPointerCapture(event.pointerId);
    this.fingers.set(event.pointerId, { x: event.offsetX, y: event.offsetY });
    const range = chartState.range.peek();
    if (this.fingers.size === 2) {
      this.pinch = { places: this.places(element), ...range };
      this.moved = true;
    }
    if (this.fingers.size !== 1) return;
    this.start = { x: event.offsetX, y: event.offsetY, ...range, scroll: chartState.scroll.peek() };
    this.measuring = event.shiftKey;
    this.moved = false;
  }

  move(event: PointerEvent, gestures: Gestures): void {
    if (!this.fingers.has(event.pointerId)) return;
    this.fingers.set(event.pointerId, { x: event.offsetX, y: event.offsetY });
    const element = event.currentTarget as HTMLElement;
    const { chartState } = gestures;
    if (this.pinch) {
      if (this.fingers.size < 2) return;
      const { from, to } = pinched(this.pinch, this.pinch.places, this.places(element));
      return chartState.show(from, to);
    }
    const { start } = this;
    if (!start) return;
    this.moved ||= Math.hypot(event.offsetX - start.x, event.offsetY - start.y) > 3;
    if (!this.moved) return;
    if (this.measuring) return this.measure(event, gestures, false);
    chartState.hovered.value = undefined;
    const shift = ((start.x - event.offsetX) / element.clientWidth) * (start.to - start.from);
    chartState.show(start.from + shift, start.to + shift);
    chartState.scrollTo(start.scroll + start.y - event.offsetY);
  }

  up(event: PointerEvent, gestures: Gestures): void {
    if (!this.fingers.delete(event.pointerId)) return;
    if (!this.moved && event.type === 'pointerup') gestures.onClick(event);
    if (this.moved && this.measuring && !this.pinch) this.measure(event, gestures, true);
    if (this.fingers.size > 0) return;
    this.start = undefined;
    this.pinch = undefined;
  }

  private measure(event: PointerEvent, { timeAt, onSpan }: Gestures, chosen: boolean): void {
    const [a, b] = [timeAt(this.start!.x), timeAt(event.offsetX)];
    onSpan(Math.max(Math.min(a, b), 0), Math.max(a, b), chosen);
  }

  private places(element: HTMLElement): [number, number] {
    const [a, b] = [...this.fingers.values()].slice(0, 2).map(({ x }) => x / element.clientWidth);
    return [a!, b!];
  }
}
