import type { Problem, RawBlock, RawRecord } from './record';

/** A limit that keeps the page alive: about 70 bytes each are needed to show them. */
export const mostIntervals = 30_000_000;
const mostProblems = 200;

/** A column of numbers that grows in pieces, so that it never takes twice its size. */
class Column {
  private readonly full: Float64Array[] = [];
  private piece = new Float64Array(pieceSize);
  private used = 0;
  /** The last one; 0 at first. */
  last = 0;

  get length(): number {
    return this.full.length * pieceSize + this.used;
  }

  push(value: number): void {
    if (this.used === pieceSize) {
      this.full.push(this.piece);
      this.piece = new Float64Array(pieceSize);
      this.used = 0;
    }
    this.piece[this.used++] = this.last = value;
  }

  /** All of them; the column is empty afterwards. */
  take(): Float64Array {
    const all = new Float64Array(this.length);
    this.full.forEach((piece, index) => all.set(piece, index * pieceSize));
    all.set(this.piece.subarray(0, this.used), this.full.length * pieceSize);
    this.full.length = 0;
    this.used = 0;
    return all;
  }
}

const pieceSize = 1 << 15;

/** Takes a record piece by piece, from the text or from the script, and holds to what later code relies on. */
export class RecordBuilder {
  readonly threads: string[] = [];
  readonly blocks: RawBlock[] = [];
  private readonly names: string[] = [];
  private readonly nameIndex = new Map<string, number>();
  private readonly begin = new Column();
  private readonly end = new Column();
  private readonly problems: Problem[] = [];
  private moreProblems = 0;
  private full = false;

  report(where: string, what: string): void {
    if (this.problems.length < mostProblems) this.problems.push({ where, what });
    else ++this.moreProblems;
  }

  get intervals(): number {
    return this.begin.length;
  }

  addThread(): number {
    this.threads.push('');
    return this.threads.length - 1;
  }

  /** `parent` is -1 for a block at the top of its thread. */
  addBlock(thread: number, parent: number): number {
    const depth = parent < 0 ? 0 : this.blocks[parent]!.depth + 1;
    this.blocks.push({ name: -1, thread, parent, depth, first: this.begin.length, count: 0 });
    return this.blocks.length - 1;
  }

  setName(block: number, name: string): void {
    let index = this.nameIndex.get(name);
    if (index === undefined) {
      index = this.names.push(name) - 1;
      this.nameIndex.set(name, index);
    }
    this.blocks[block]!.name = index;
  }

  /** Gives what is wrong with the interval, which is then left out. */
  addInterval(block: number, begin: number, end: number): string | undefined {
    const owner = this.blocks[block]!;
    const last = this.begin.length - 1;
    if (owner.count === 0) owner.first = last + 1;
    else if (owner.first + owner.count !== last + 1) return 'a second list of times for one block';
    if (!(begin >= 0 && begin < Infinity && end >= 0 && end < Infinity)) return 'a time that is no number';
    if (end !== 0 && end < begin) return 'an interval that ends before it begins';
    if (owner.count > 0 && begin < Math.max(this.begin.last, this.end.last))
      return 'an interval that begins before the one before it has ended';
    if (this.begin.length >= mostIntervals) {
      if (this.full) return undefined;
      this.full = true;
      return `more than ${mostIntervals.toLocaleString('en')} intervals: the rest is left out`;
    }
    this.begin.push(begin);
    this.end.push(end);
    ++owner.count;
    return undefined;
  }

  finish(): RawRecord {
    for (let i = 0; i < this.blocks.length; ++i)
      if (this.blocks[i]!.name < 0) this.setName(i, '(name missing)');
    for (let i = 0; i < this.threads.length; ++i) this.threads[i] ||= '(name missing)';
    return {
      names: this.names,
      threads: this.threads,
      blocks: this.blocks,
      begin: this.begin.take(),
      end: this.end.take(),
      problems: this.problems,
      moreProblems: this.moreProblems,
    };
  }
}
