// Two records, block by block: those with the same path of names are the same block, on whatever thread they ran.
import { stepAt, type Profile } from './profile';
import { figuresOf, type Figures } from './statistics';

export interface ComparedFigures extends Figures {
  /** Milliseconds by which `total` may be off, because stamps are rounded. */
  uncertainty: number;
}

const [firstNames, lastNames] = [4, 12];

export class Compared {
  /** Undefined where the record has no such block. */
  before: ComparedFigures | undefined;
  after: ComparedFigures | undefined;
  /** The blocks that stand in this line, by their places in each record. */
  readonly blocks: { before: number[]; after: number[] } = { before: [], after: [] };
  readonly depth: number;
  private readonly head: readonly string[];

  constructor(
    readonly name: string,
    readonly parent: Compared | undefined,
  ) {
    this.depth = parent ? parent.depth + 1 : 0;
    const above = parent?.head ?? [];
    this.head = above.length < firstNames ? [...above, name] : above;
  }

  /** The names from the top down to this one. */
  get path(): string[] {
    return this.end(this.depth + 1);
  }

  /** The same for people: of a deep path the first and the last names, and how many are left out between them. */
  get shortPath(): string[] {
    const left = this.depth + 1 - firstNames - lastNames;
    return left > 0 ? [...this.head, `… (${left})`, ...this.end(lastNames)] : this.path;
  }

  private end(count: number): string[] {
    const names: string[] = [];
    for (let at: Compared | undefined = this; at && names.length < count; at = at.parent) names.push(at.name);
    return names.reverse();
  }
}

export interface Change {
  difference: number;
  /** After by before; NaN if either is missing or before is zero. */
  ratio: number;
}

export function change(before: number | undefined, after: number | undefined): Change {
  const difference = (after ?? NaN) - (before ?? NaN);
  return { difference, ratio: before ? (after ?? NaN) / before : NaN };
}

/** In the order of the first record, then what only the second one has. */
export function compare(before: Profile, after: Profile): Compared[] {
  const matching = new Matching();
  matching.take(before, 'before');
  matching.take(after, 'after');
  return matching.rows;
}

/** Finds a block's row by its parent's row and its name, so that deep records take no longer than others. */
class Matching {
  readonly rows: Compared[] = [];
  private readonly places = new Map<string | number, number>();
  private readonly nameIds = new Map<string, number>();

  take(profile: Profile, side: 'before' | 'after'): void {
    const rowOf = this.match(profile);
    const figures = figuresOf(profile, this.rows.length, (block) => rowOf[block]!);
    const uncertainties = uncertaintiesOf(profile, this.rows.length, rowOf);
    rowOf.forEach((row, block) => this.rows[row]!.blocks[side].push(block));
    for (const row of new Set(rowOf))
      this.rows[row]![side] = { ...figures[row]!, uncertainty: uncertainties[row]! };
  }

  /** The row of each block. */
  private match(profile: Profile): Int32Array {
    const rowOf = new Int32Array(profile.blocks.length);
    const ids = profile.names.map((name) => {
      const id = this.nameIds.get(name) ?? this.nameIds.size;
      this.nameIds.set(name, id);
      return id;
    });
    profile.blocks.forEach(({ name, parent }, index) => {
      const above = parent < 0 ? -1 : rowOf[parent]!;
      const key = `${above} ${ids[name]}`;
      let row = this.places.get(key);
      if (row === undefined) {
        row = this.rows.push(new Compared(profile.names[name]!, this.rows[above])) - 1;
        this.places.set(key, row);
      }
      rowOf[index] = row;
    });
    return rowOf;
  }
}

/**
 * How far each row's total may be off. A stamp is off by up to half a step of the record; in a sum of many, what is too
 * early and too late makes up for each other, so that four standard deviations are enough.
 */
function uncertaintiesOf(profile: Profile, rows: number, rowOf: Int32Array): Float64Array {
  const most = new Float64Array(rows);
  const squares = new Float64Array(rows);
  profile.blocks.forEach((block, index) => {
    const row = rowOf[index]!;
    for (let i = block.first; i < block.first + block.count; ++i) {
      const id = profile.ids[i]!;
      for (const step of [stepAt(profile, profile.begin[id]!), stepAt(profile, profile.end[id]!)]) {
        most[row]! += step / 2;
        squares[row]! += step ** 2 / 12;
      }
    }
  });
  return most.map((value, row) => Math.min(value, 4 * Math.sqrt(squares[row]!)));
}

export const verdicts = [
  'slower',
  'more in total',
  'more often',
  'from zero',
  'new',
  'gone',
  'cannot be read',
] as const;
export type Verdict = (typeof verdicts)[number];

export interface Limits {
  /** By what mean, total and count may grow; undefined if they may grow at will. */
  ratio: number | undefined;
  /** Milliseconds: a block is not judged where its total (its mean for "slower") stays below. */
  atLeast: number;
}

/** What is wrong with a block in the second record. What the rounding of stamps can account for is no change. */
export function judge({ before, after }: Compared, { ratio = Infinity, atLeast }: Limits): Verdict[] {
  // The library writes no block without an interval, and closes all but the last one of each.
  const lost = (figures: ComparedFigures | undefined) => figures?.count === 0;
  if (lost(before) || lost(after)) return ['cannot be read'];
  if (!before) return after!.total >= atLeast ? ['new'] : [];
  if (!after) return before.total >= atLeast ? ['gone'] : [];
  const found: Verdict[] = [];
  const grown = (from: number, fromMay: number, to: number, toMay: number) =>
    to >= atLeast && from > 0 && to - toMay > ratio * (from + fromMay);
  const uncertainMean = ({ uncertainty, count }: ComparedFigures) => uncertainty / count;
  if (grown(before.mean, uncertainMean(before), after.mean, uncertainMean(after))) found.push('slower');
  if (grown(before.total, before.uncertainty, after.total, after.uncertainty)) found.push('more in total');
  if (after.total >= atLeast && after.count > ratio * before.count) found.push('more often');
  if (before.total === 0 && after.total >= atLeast && after.total - after.uncertainty > before.uncertainty)
    found.push('from zero');
  // A mean that there was, and now nothing that has ended.
  if (Number.isNaN(after.mean) && !Number.isNaN(before.mean)) found.push('cannot be read');
  return found;
}
