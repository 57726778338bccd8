import { batch, signal } from '@preact/signals';
import type { Range } from '../../record/statistics';
import type { Look } from './draw';

/** What part of a chart is seen. */
export class ChartState {
  readonly range = signal<Range>({ from: 0, to: 1 });
  /** Pixels above the first one seen. */
  readonly scroll = signal(0);
  readonly hovered = signal<number | undefined>(undefined);
  /** Counts how often the selected box was asked for: it is then shown, wherever it is. */
  readonly wanted = signal(0);
  /** The end of the axis. */
  private last = 1;
  /** Pixels that there are to scroll; the chart tells. */
  scrollable = 0;
  /** The box that was brought into view last, and for which wish. */
  brought: number | undefined = undefined;
  broughtFor = 0;
  /** What was drawn last. */
  look: Look | undefined = undefined;

  reset(last: number): void {
    this.last = last > 0 ? last : 1;
    batch(() => {
      this.range.value = { from: 0, to: this.last };
      this.scroll.value = 0;
      this.hovered.value = undefined;
    });
  }

  all(): void {
    this.show(0, this.last);
  }

  /** Shows from `from` to `to`, as far as the axis goes, and not less than numbers can tell apart. */
  show(from: number, to: number): void {
    const least = this.last * 1e-9;
    let length = Math.max(to - from, least);
    if (!Number.isFinite(length)) return;
    length = Math.min(length, this.last);
    const middle = (from + to) / 2;
    const begin = Math.min(Math.max(middle - length / 2, 0), this.last - length);
    this.range.value = { from: begin, to: begin + length };
  }

  /** Zooms in by a factor above 1, out by one below; `at` (0 to 1 of the width) stays where it is. */
  zoom(factor: number, at = 0.5): void {
    const { from, to } = this.range.value;
    const fixed = from + (to - from) * at;
    const length = Math.min(Math.max((to - from) / factor, this.last * 1e-9), this.last);
    const begin = Math.min(Math.max(fixed - length * at, 0), this.last - length);
    this.range.value = { from: begin, to: begin + length };
  }

  /** Moves by a part of what is seen. */
  pan(part: number): void {
    const { from, to } = this.range.value;
    const shift = Math.min(Math.max((to - from) * part, -from), this.last - to);
    this.range.value = { from: from + shift, to: to + shift };
  }

  scrollBy(pixels: number): void {
    this.scrollTo(this.scroll.value + pixels);
  }

  scrollTo(pixels: number): void {
    this.scroll.value = Math.round(Math.min(Math.max(pixels, 0), this.scrollable));
  }

  /** Shows the selected box with the next picture, when the view's height is known. */
  bring(): void {
    ++this.wanted.value;
  }

  /** Leaves the box where it is, in view or not, although it was asked for. */
  leave(box: number | undefined): void {
    this.brought = box;
    this.broughtFor = this.wanted.value;
  }

  /** Shows an interval with room around it. */
  fit(from: number, to: number): void {
    const room = Math.max((to - from) * 0.1, this.last * 1e-8);
    this.show(from - room, to + room);
  }

  /** Moves, without zooming, to where the interval can be seen; zooms in if it would be too small to see. */
  reveal(from: number, to: number): void {
    const range = this.range.value;
    const length = range.to - range.from;
    if (to - from > length || to - from < length / 300) this.fit(from - (to - from), to + (to - from));
    else if (from < range.from || to > range.to)
      this.show((from + to - length) / 2, (from + to + length) / 2);
  }
}

/**
 * The range after two fingers went from one pair of places to another one (parts of the width): what was under each
 * finger stays there.
 */
export function pinched(range: Range, before: [number, number], after: [number, number]): Range {
  const length = range.to - range.from;
  const apart = Math.max(Math.abs(after[1] - after[0]), 0.02);
  const scale = Math.max(Math.abs(before[1] - before[0]), 0.02) / apart;
  const time = range.from + (length * (before[0] + before[1])) / 2;
  const from = time - (length * scale * (after[0] + after[1])) / 2;
  return { from, to: from + length * scale };
}
