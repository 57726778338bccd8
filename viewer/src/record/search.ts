// The search: what a user may type, and the intervals that it finds, in portions that leave the page alive.
import { firstWhere, lowerBound } from './bounds';
import { duration, type Profile } from './profile';
import { sortingRow } from './rows';
import type { Range } from './statistics';

/** What is searched for. A condition that is missing holds for all. */
export interface Query {
  name?: (name: string) => boolean;
  thread?: (name: string) => boolean;
  /** Milliseconds. */
  duration?: (value: number) => boolean;
}

const units: Readonly<Record<string, number>> = { ns: 1e-6, us: 1e-3, µs: 1e-3, ms: 1, s: 1e3, min: 6e4 };
const comparisons: Readonly<Record<string, (a: number, b: number) => boolean>> = {
  '>': (a, b) => a > b,
  '>=': (a, b) => a >= b,
  '<': (a, b) => a < b,
  '<=': (a, b) => a <= b,
};
const durationTerm = /(?:^|\s)(>=|<=|>|<)\s*(\d+(?:\.\d+)?|\.\d+)\s*(ns|us|µs|μs|ms|s|min)?(?=\s|$)/;
const threadTerm = /(?:^|\s)thread:\s*(?:"([^"]*)"|(\S+))(?=\s|$)/i;

/**
 * Understands `text`, `"text with > 5 in it"`, `/regular expression/`, `> 5 ms`, `< 10 us`, `thread:16`, and several of
 * them with spaces between. Capitals do not matter. Gives undefined for an empty search, and a sentence for one that
 * cannot be understood.
 */
export function parseQuery(search: string): Query | string | undefined {
  const query: Query = {};
  let rest = search.trim();
  const quoted = /^"([^"]+)"/.exec(rest);
  if (quoted) {
    query.name = holds(quoted[1]!);
    rest = rest.slice(quoted[0].length);
  }
  const expression = quoted ? null : /^\/(.+)\/(?=\s|$)/.exec(rest);
  if (expression) {
    rest = rest.slice(expression[0].length);
    try {
      const pattern = new RegExp(expression[1]!, 'i');
      query.name = (name) => pattern.test(name);
    } catch {
      return `/${expression[1]}/ is no regular expression.`;
    }
  }
  for (let found; (found = durationTerm.exec(rest)); rest = without(rest, found)) {
    const compare = comparisons[found[1]!]!;
    const limit = Number(found[2]) * units[(found[3] ?? 'ms').replace('μ', 'µ')]!;
    const other = query.duration;
    // Differences of rounded stamps have a long tail of digits.
    const rounded = (value: number) => Math.round(value * 1e8) / 1e8;
    query.duration = (value) => compare(rounded(value), limit) && (!other || other(value));
  }
  for (let found; (found = threadTerm.exec(rest)); rest = without(rest, found))
    query.thread = holds(found[1] ?? found[2]!);
  rest = rest.trim();
  if (rest && (quoted || expression)) return `"${rest}" is not understood behind the name.`;
  if (rest) query.name = holds(rest);
  return query.name || query.duration || query.thread ? query : undefined;
}

function holds(wanted: string): (text: string) => boolean {
  const lower = wanted.toLowerCase();
  return (text) => text.toLowerCase().includes(lower);
}

const without = (text: string, found: RegExpExecArray) =>
  `${text.slice(0, found.index)} ${text.slice(found.index + found[0].length)}`;

const portion = 1 << 14;
const longestWait = 20; // milliseconds

/** A search under way. `threads` are those to search in, in the order that decides between equal stamps. */
export class Search {
  /** All hits in time order, once the search is done. */
  hits = new Int32Array(0);
  /** Hits so far. */
  found = 0;
  done = false;
  private readonly threads: readonly number[];
  private readonly ofBlock: Uint8Array;
  private readonly work: Generator<void>;
  private blocksKnown = false;
  private patience = 0;

  constructor(
    private readonly profile: Profile,
    private readonly query: Query,
    private readonly names: readonly string[],
    threads: readonly number[],
    threadName: (thread: number) => string,
  ) {
    this.threads = threads.filter((thread) => query.thread?.(threadName(thread)) ?? true);
    this.ofBlock = new Uint8Array(profile.blocks.length);
    this.work = this.working();
  }

  /** Goes on for that long, and gives whether the search is done. */
  run(milliseconds: number): boolean {
    const until = performance.now() + milliseconds;
    while (!this.done && performance.now() < until) this.done = this.work.next().done === true;
    return this.done;
  }

  /**
   * The hit after the interval or time `from` (`step` 1) or before it (-1), round the end. Undefined without hits; and
   * while the search is not done also where the nearest hit is so far away that looking for it would hold the page up.
   */
  next(from: { id: number } | { time: number }, step: 1 | -1): number | undefined {
    const { begin } = this.profile;
    const time = 'id' in from ? begin[from.id]! : from.time;
    const id = 'id' in from ? from.id : undefined;
    if (this.done) return this.nextDone(time, id, step);
    this.patience = performance.now() + longestWait;
    while (!this.blocksKnown && performance.now() < this.patience) this.work.next();
    if (!this.blocksKnown) return undefined;
    return this.nearest(time, id, step) ?? this.nearest(step > 0 ? 0 : Infinity, undefined, step);
  }

  /** Where a hit stands among all, from 0 on; -1 if it is none, or while that is not known. */
  placeOf(id: number): number {
    const { hits } = this;
    const { begin } = this.profile;
    let at = firstWhere(0, hits.length, (hit) => begin[hits[hit]!]! >= begin[id]!);
    while (at < hits.length && begin[hits[at]!] === begin[id] && hits[at] !== id) ++at;
    return hits[at] === id ? at : -1;
  }

  private nextDone(time: number, id: number | undefined, step: 1 | -1): number | undefined {
    const { hits } = this;
    const { begin } = this.profile;
    const isBehind = (hit: number) =>
      id === undefined ? begin[hits[hit]!]! >= time : this.order(hits[hit]!, id) >= 0;
    let at = firstWhere(0, hits.length, isBehind);
    if (step < 0) --at;
    else if (id !== undefined && hits[at] === id) ++at;
    return hits.at(at % hits.length);
  }

  private isHit(id: number): boolean {
    return (
      this.ofBlock[this.profile.block[id]!] === 1 &&
      (this.query.duration?.(duration(this.profile, id)) ?? true)
    );
  }

  private *working(): Generator<void> {
    const { profile, query } = this;
    const { blocks } = profile;
    const ofName = new Uint8Array(this.names.length);
    for (let at = 0; at < ofName.length; ++at) {
      ofName[at] = !query.name || query.name(this.names[at]!) ? 1 : 0;
      if (at % 1024 === 1023) yield;
    }
    for (let at = 0; at < blocks.length; ++at) {
      this.ofBlock[at] = ofName[blocks[at]!.name]!;
      if (at % portion === portion - 1) yield;
    }
    this.blocksKnown = true;
    yield;

    let ids = new Int32Array(portion);
    const runs: number[] = [];
    for (const thread of this.threads)
      for (const row of profile.threads[thread]!.rows) {
        for (let id = row.first; id < row.first + row.count; ++id) {
          if (this.isHit(id)) {
            if (this.found === ids.length) {
              const larger = new Int32Array(ids.length * 2);
              larger.set(ids);
              ids = larger;
            }
            ids[this.found++] = id;
          }
          if (id % portion === 0) yield;
        }
        if (this.found > (runs[runs.length - 1] ?? 0)) runs.push(this.found);
      }
    const hits = ids.subarray(0, this.found);
    yield* sortingRow(hits, 0, runs, profile.begin, profile.end);
    this.hits = hits;
  }

  /** Row by row from the time on, no further than the best hit so far. */
  private nearest(time: number, id: number | undefined, step: 1 | -1): number | undefined {
    const { begin, threads } = this.profile;
    let best: number | undefined;
    let looked = 0;
    for (const thread of this.threads)
      for (const row of threads[thread]!.rows) {
        const end = row.first + row.count;
        let at = lowerBound(begin, row.first, end, time);
        if (step < 0 && id !== undefined) while (at < end && begin[at]! <= time) ++at;
        for (at = step > 0 ? at : at - 1; at >= row.first && at < end; at += step) {
          if (best !== undefined && this.order(at, best) * step > 0) break;
          if (++looked % portion === 0 && performance.now() > this.patience) return undefined;
          if (id !== undefined && this.order(at, id) * step <= 0) continue;
          if (this.isHit(at)) {
            best = at;
            break;
          }
        }
      }
    return best;
  }

  /** Below 0 if `a` comes before `b`. */
  private order(a: number, b: number): number {
    const { begin, end, blocks, block } = this.profile;
    const place = (id: number) => this.threads.indexOf(blocks[block[id]!]!.thread);
    return begin[a]! - begin[b]! || end[a]! - end[b]! || place(a) - place(b) || a - b;
  }
}

/** 1 for each of `places` equal parts of the range in which a hit begins, its end included; `hits` are in time order. */
export function marksOf(
  { begin }: Profile,
  hits: Int32Array,
  { from, to }: Range,
  places: number,
): Uint8Array {
  const marks = new Uint8Array(places);
  const part = (to - from) / places;
  let hit = firstWhere(0, hits.length, (at) => begin[hits[at]!]! >= from);
  while (hit < hits.length && begin[hits[hit]!]! <= to) {
    const place = Math.min(places - 1, Math.floor((begin[hits[hit]!]! - from) / part));
    marks[place] = 1;
    if (place === places - 1) break;
    hit = firstWhere(hit + 1, hits.length, (at) => begin[hits[at]!]! >= from + (place + 1) * part);
  }
  return marks;
}
