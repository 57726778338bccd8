// Numbers as the page shows them.

const units: [number, string][] = [
  [1000, 's'],
  [1, 'ms'],
  [1e-3, 'µs'],
  [1e-6, 'ns'],
];

/** Milliseconds in the unit that suits them, with four digits. */
export function formatTime(milliseconds: number): string {
  if (!Number.isFinite(milliseconds)) return '–';
  const size = Math.abs(milliseconds);
  if (size === 0) return '0';
  const [scale, unit] = units.find(([scale]) => size >= scale * 0.99995) ?? units[units.length - 1]!;
  return `${trimmed(milliseconds / scale)} ${unit}`;
}

function trimmed(value: number): string {
  const digits = value.toPrecision(4);
  return digits.includes('e')
    ? String(Math.round(value))
    : digits.includes('.')
      ? digits.replace(/\.?0+$/, '')
      : digits;
}

/** A point in time as the axis names it: as many decimals as tell one tick from the next. */
export function formatPoint(milliseconds: number, step: number): string {
  const [scale, unit] = step >= 100 ? [1000, 's'] : step >= 0.01 ? [1, 'ms'] : [1e-3, 'µs'];
  const decimals = Math.max(0, Math.ceil(-Math.log10(step / (scale as number)) - 1e-9));
  return `${(milliseconds / (scale as number)).toFixed(Math.min(decimals, 9))} ${unit}`;
}

export function formatCount(count: number): string {
  return count.toLocaleString('en');
}

export function formatRatio(ratio: number): string {
  return Number.isFinite(ratio) ? `× ${trimmed(ratio)}` : '–';
}

export function formatShare(part: number, whole: number): string {
  return whole > 0 ? `${((100 * part) / whole).toFixed(1)} %` : '–';
}

/** A name on one line. */
export function oneLine(name: string): string {
  return name.replace(/[\x00-\x1f\x7f]+/g, '␤');
}
