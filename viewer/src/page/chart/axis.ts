/** A round step (1, 2 or 5 by a power of ten) that is not shorter than `least`. */
export function roundStep(least: number): number {
  const power = 10 ** Math.floor(Math.log10(least));
  const digit = least / power;
  return power * (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10);
}

/** Where ticks stand between `from` and `to` on `width` pixels, about 110 apart. */
export function ticks(from: number, to: number, width: number): { step: number; at: number[] } {
  const step = roundStep(((to - from) * 110) / Math.max(width, 1));
  const at: number[] = [];
  for (let tick = Math.ceil(from / step); tick * step <= to && at.length < 1000; ++tick) at.push(tick * step);
  return { step, at };
}
