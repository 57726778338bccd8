import { change, compare, type Compared } from '../src/record/compare';
import type { Profile } from '../src/record/profile';
import type { CompareOptions } from './arguments';

const notable = 0.05;

/** A table of what changed, and the number of blocks that got too slow. */
export function compareRecords(
  before: Profile,
  after: Profile,
  options: CompareOptions,
): { text: string; slower: number } {
  const rows = compare(before, after);
  const tooSlow = (row: Compared) =>
    options.slower !== undefined &&
    change(row.before?.mean, row.after?.mean).ratio > options.slower &&
    row.after!.mean >= options.atLeast;
  const changed = (row: Compared) => {
    if (!row.before || !row.after) return true;
    const { ratio } = change(row.before.mean, row.after.mean);
    return Math.abs(ratio - 1) > notable || row.before.count !== row.after.count;
  };
  const shown = rows.filter((row) => options.all || tooSlow(row) || changed(row));
  const lines = [
    ['block', 'count', '', 'total ms', '', 'change', 'ratio', 'mean ms', '', 'change', 'ratio', ''],
    ['', 'before', 'after', 'before', 'after', '', '', 'before', 'after', '', '', ''],
    ...shown.map((row) => cells(row, tooSlow(row))),
  ];
  const slower = rows.filter(tooSlow).length;
  const summary =
    options.slower === undefined
      ? `${rows.length} blocks, ${shown.length} shown`
      : `${rows.length} blocks, ${slower} slower than ${options.slower} times`;
  return { text: `${aligned(lines)}${summary}\n`, slower };
}

function cells({ path, before, after }: Compared, slow: boolean): string[] {
  const total = change(before?.total, after?.total);
  const mean = change(before?.mean, after?.mean);
  return [
    path.map((name) => name.replace(/[\x00-\x1f\x7f]+/g, ' ')).join(' > '),
    String(before?.count ?? '-'),
    String(after?.count ?? '-'),
    ...[before?.total, after?.total, total.difference, total.ratio].map(digits),
    ...[before?.mean, after?.mean, mean.difference, mean.ratio].map(digits),
    !before ? 'only after' : !after ? 'only before' : slow ? 'SLOWER' : '',
  ];
}

function digits(value: number | undefined): string {
  if (value === undefined || !Number.isFinite(value)) return '-';
  return String(Number(value.toPrecision(4)));
}

/** The first column to the left, the others to the right. */
function aligned(lines: string[][]): string {
  const widths = lines[0]!.map((_, column) =>
    lines.reduce((widest, line) => Math.max(widest, line[column]!.length), 0),
  );
  const pad = (text: string, column: number) =>
    column === 0 ? text.padEnd(widths[0]!) : text.padStart(widths[column]!);
  return lines.map((line) => line.map(pad).join('  ').trimEnd() + '\n').join('');
}
