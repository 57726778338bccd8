// Numbers and names as the page shows them.

const units: [number, string][] = [
  [1000, 's'],
  [1, 'ms'],
  [1e-3, 'µs'],
  [1e-6, 'ns'],
];

/** The digits of a time stamp. */
const digits = 6;

const unitOf = (size: number) =>
  units.find(([scale]) => size >= scale * (1 - 0.5 * 10 ** -digits)) ?? units[units.length - 1]!;

/** Milliseconds in the unit that suits them, with the six digits that a record has, or fewer. */
export function formatTime(milliseconds: number, shown = digits): string {
  if (!Number.isFinite(milliseconds)) return '–';
  const size = Math.abs(milliseconds);
  if (size === 0) return '0';
  const [scale, unit] = unitOf(size);
  return `${trimmed(milliseconds / scale, shown)} ${unit}`;
}

function trimmed(value: number, shown: number): string {
  const text = value.toPrecision(shown);
  return text.includes('e') ? String(Math.round(value)) : withoutZeros(text);
}

const withoutZeros = (text: string) => (text.includes('.') ? text.replace(/\.?0+$/, '') : text);

/** A point in time as the axis names it: as many decimals as tell one tick from the next. */
export function formatPoint(milliseconds: number, step: number): string {
  const [scale, unit] = step >= 100 ? [1000, 's'] : step >= 0.01 ? [1, 'ms'] : [1e-3, 'µs'];
  const decimals = Math.max(0, Math.ceil(-Math.log10(step / (scale as number)) - 1e-9));
  return `${(milliseconds / (scale as number)).toFixed(Math.min(decimals, 9))} ${unit}`;
}

/** A point of a span: six digits, or as many as tell a thousandth of the span. */
export function formatPointOf(milliseconds: number, span: number): string {
  if (milliseconds === 0) return '0';
  const [scale, unit] = unitOf(Math.abs(milliseconds));
  const value = milliseconds / scale;
  const asStamp = digits - 1 - Math.floor(Math.log10(Math.abs(value)));
  const asSpan = span > 0 ? Math.ceil(-Math.log10(span / 1000 / scale)) : 0;
  return `${withoutZeros(value.toFixed(Math.min(Math.max(asStamp, asSpan, 0), 15)))} ${unit}`;
}

/** "1.91176 s to 1.91184 s: 80 µs" */
export function formatSpan({ from, to }: { from: number; to: number }): string {
  const span = to - from;
  return `${formatPointOf(from, span)} to ${formatPointOf(to, span)}: ${formatTime(span)}`;
}

export function formatCount(count: number): string {
  return count.toLocaleString('en');
}

/** A count in the room of an axis: 12,345 as "12.3k"; nothing for what is no count. */
export function shortCount(count: number): string {
  if (!Number.isInteger(count)) return '';
  if (count < 10_000) return String(count);
  const [scale, unit] = count < 1e6 ? [1e3, 'k'] : count < 1e9 ? [1e6, 'M'] : [1e9, 'G'];
  return `${Number((count / (scale as number)).toPrecision(3))}${unit}`;
}

export function formatRatio(ratio: number): string {
  return Number.isFinite(ratio) ? `× ${withoutZeros(ratio.toPrecision(4))}` : '–';
}

export function formatShare(part: number, whole: number): string {
  return whole > 0 ? `${((100 * part) / whole).toFixed(1)} %` : '–';
}

/** A name on one line. */
export function oneLine(name: string): string {
  return name.replace(/[\x00-\x1f\x7f]+/g, '␤');
}

/** A name on one line of `most` characters; what is too long loses its middle, since names differ at their ends. */
export function shortened(name: string, most: number): string {
  // What is far from both ends is not looked at: a name may be very long.
  const text = oneLine(name.length > 4 * most ? name.slice(0, 2 * most) + name.slice(-2 * most) : name);
  if (text.length <= most && name.length <= 4 * most) return text;
  const back = Math.floor((most - 1) * 0.45);
  return `${text.slice(0, most - 1 - back)}…${back > 0 ? text.slice(-back) : ''}`;
}

/** A name in two parts, of which a narrow column may cut the first one. */
export function inTwo(name: string): [head: string, tail: string] {
  const text = shortened(name, 400);
  return text.length > 24 ? [text.slice(0, -14), text.slice(-14)] : ['', text];
}
