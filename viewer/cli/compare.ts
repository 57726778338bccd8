import { change, compare, judge, verdicts, type Compared, type Verdict } from '../src/record/compare';
import type { Profile } from '../src/record/profile';
import type { CompareOptions } from './arguments';

const notable = 0.05;

/** A record with the number of its places that could not be read. */
export interface Read {
  path: string;
  profile: Profile;
  damaged: number;
}

/** A table of what changed, a line for each verdict that was given, and the exit status. */
export function compareRecords(
  before: Read,
  after: Read,
  options: CompareOptions,
): { text: string; status: number } {
  const judged = compare(before.profile, after.profile).map((row) => ({
    row,
    verdicts: judge(row, { ratio: options.slower, atLeast: options.atLeast }),
  }));
  const shown = judged.filter(({ row, verdicts }) => options.all || verdicts.length > 0 || changed(row));
  const lines = [
    ['block', 'count', '', 'total ms', '', 'change', 'ratio', 'mean ms', '', 'change', 'ratio', ''],
    ['', 'before', 'after', 'before', 'after', '', '', 'before', 'after', '', '', ''],
    ...shown.map(({ row, verdicts }) => [...cells(row), verdicts.join(', ')]),
  ];
  const damaged = [before, after].filter((record) => record.damaged > 0);
  const counts = verdicts.map((verdict) => ({
    verdict,
    count: judged.filter((block) => block.verdicts.includes(verdict)).length,
    fails: options.fail.includes(verdict),
  }));
  const failing = counts.filter(
    ({ verdict, count, fails }) =>
      fails && (count > 0 || (verdict === 'cannot be read' && damaged.length > 0)),
  );
  const summary = [
    `${judged.length} blocks, ${shown.length} shown`,
    ...counts
      .filter(({ count }) => count > 0)
      .map(({ verdict, count, fails }) => `${count} ${verdict}${fails ? ': FAILED' : ''}`),
    ...damaged.map(
      ({ path, damaged }) => `${path}: places that cannot be read: ${damaged}${unreadable(options)}`,
    ),
  ];
  return {
    text: aligned(lines) + summary.map((line) => line + '\n').join(''),
    status: Math.max(0, ...failing.map(({ verdict }) => statusOf[verdict])),
  };
}

/** Exit statuses; the highest of those found is given, 2 being for what could not be done at all. */
const statusOf: Record<Verdict, number> = {
  slower: 1,
  'more in total': 1,
  'more often': 1,
  'from zero': 3,
  new: 4,
  gone: 5,
  'cannot be read': 6,
};

const unreadable = ({ fail }: CompareOptions) => (fail.includes('cannot be read') ? ': FAILED' : '');

function changed({ before, after }: Compared): boolean {
  if (!before || !after) return true;
  const apart = (from: number, to: number) => !Object.is(from, to) && !(Math.abs(to / from - 1) <= notable);
  return before.count !== after.count || apart(before.mean, after.mean) || apart(before.total, after.total);
}

function cells({ shortPath, before, after }: Compared): string[] {
  const total = change(before?.total, after?.total);
  const mean = change(before?.mean, after?.mean);
  return [
    shortPath.map(shortName).join(' > '),
    String(before?.count ?? '-'),
    String(after?.count ?? '-'),
    ...[before?.total, after?.total, total.difference, total.ratio].map(digits),
    ...[before?.mean, after?.mean, mean.difference, mean.ratio].map(digits),
  ];
}

/** On one line of a sensible length. */
function shortName(name: string): string {
  const line = name.replace(/[\x00-\x1f\x7f]+/g, ' ');
  return line.length > 200 ? `${line.slice(0, 100)}…${line.slice(-99)}` : line;
}

function digits(value: number | undefined): string {
  if (value === undefined || !Number.isFinite(value)) return '-';
  return String(Number(value.toPrecision(4)));
}

/** The first column to the left, the numbers to the right, what is said about the block behind them. */
function aligned(lines: string[][]): string {
  const last = lines[0]!.length - 1;
  const widths = lines[0]!.map((_, column) =>
    lines.reduce((widest, line) => Math.max(widest, line[column]!.length), 0),
  );
  const pad = (text: string, column: number) =>
    column === 0 || column === last ? text.padEnd(widths[column]!) : text.padStart(widths[column]!);
  return lines.map((line) => line.map(pad).join('  ').trimEnd() + '\n').join('');
}
