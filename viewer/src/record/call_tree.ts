// The merged flame graph: blocks of the same path become one, the heaviest to the left.
import type { Profile, Row } from './profile';
import { insideItself, type Range } from './statistics';

export interface Merged {
  name: number;
  depth: number;
  total: number;
  self: number;
  count: number;
  parent: number;
}

/** Boxes in rows by depth; `begin` and `end` are places on an axis of milliseconds spent. */
export interface CallTree<Box extends Merged = Merged> {
  nodes: Box[];
  rows: Row[];
  begin: Float64Array;
  end: Float64Array;
  total: number;
}

export interface TreeOptions {
  /** Only these threads. */
  threads?: ReadonlySet<number> | undefined;
  /** Only the time inside; an interval that lies partly inside counts with that part. */
  range?: Range | undefined;
  /** A name directly inside itself is joined with it. */
  foldRecursion?: boolean | undefined;
}

/** Nodes before they are laid out, a parent before its children; `inside` gives each one's children by name. */
interface Forest<Box extends Merged = Merged> {
  nodes: Box[];
  inside: Map<number, number>[];
}

export function makeCallTree(profile: Profile, options: TreeOptions = {}): CallTree {
  return layOut(mergePaths(profile, options));
}

function mergePaths(profile: Profile, { threads, range, foldRecursion }: TreeOptions): Forest {
  const nodes: Merged[] = [];
  const inside: Map<number, number>[] = [];
  const top = new Map<number, number>();
  const nodeOf = new Int32Array(profile.blocks.length).fill(-1);
  profile.blocks.forEach((block, index) => {
    if (threads && !threads.has(block.thread)) return;
    const parent = block.parent < 0 ? -1 : nodeOf[block.parent]!;
    const [total, count] = timeIn(profile, index, range);
    if (parent >= 0) nodes[parent]!.self -= total;
    if (foldRecursion && parent >= 0 && nodes[parent]!.name === block.name) {
      // Its time is its parent's already.
      nodeOf[index] = parent;
      nodes[parent]!.self += total;
      nodes[parent]!.count += count;
      return;
    }
    const siblings = parent < 0 ? top : inside[parent]!;
    let node = siblings.get(block.name);
    if (node === undefined) {
      const depth = parent < 0 ? 0 : nodes[parent]!.depth + 1;
      node = nodes.push({ name: block.name, depth, total: 0, self: 0, count: 0, parent }) - 1;
      inside.push(new Map());
      siblings.set(block.name, node);
    }
    nodeOf[index] = node;
    nodes[node]!.total += total;
    nodes[node]!.self += total;
    nodes[node]!.count += count;
  });
  for (const node of nodes) node.self = Math.max(0, node.self);
  return { nodes, inside };
}

/** Milliseconds and number of a block's intervals inside the range. */
function timeIn(profile: Profile, index: number, range: Range | undefined): [number, number] {
  const block = profile.blocks[index]!;
  let total = 0;
  let count = 0;
  for (let i = block.first; i < block.first + block.count; ++i) {
    const id = profile.ids[i]!;
    const from = Math.max(profile.begin[id]!, range?.from ?? -Infinity);
    const to = Math.min(profile.end[id]!, range?.to ?? Infinity);
    if (to < from) continue;
    total += to - from;
    ++count;
  }
  return [total, count];
}

/** Level by level, so that no record is too deep. */
function layOut<Box extends Merged>({ nodes, inside }: Forest<Box>): CallTree<Box> {
  const heavyFirst = (a: number, b: number) => nodes[b]!.total - nodes[a]!.total || a - b;
  const ordered: Box[] = [];
  const rows: Row[] = [];
  const begins: number[] = [];
  const ends: number[] = [];
  const top = nodes.flatMap((node, index) => (node.parent < 0 ? [index] : []));
  let groups = [{ start: 0, parent: -1, members: top }];
  const place = new Int32Array(nodes.length);
  while (groups.length > 0) {
    const first = ordered.length;
    const below: typeof groups = [];
    for (const { start, parent, members } of groups) {
      let at = start;
      for (const member of members.sort(heavyFirst)) {
        const node = nodes[member]!;
        if (node.count === 0) continue;
        place[member] = ordered.length;
        begins.push(at);
        ends.push(at + node.total);
        ordered.push({ ...node, parent: parent < 0 ? -1 : place[parent]! });
        if (inside[member]!.size > 0)
          below.push({ start: at, parent: member, members: [...inside[member]!.values()] });
        at += node.total;
      }
    }
    if (ordered.length > first) rows.push({ first, count: ordered.length - first });
    groups = below;
  }
  const total = rows[0] ? ends[rows[0].count - 1]! : 0;
  return { nodes: ordered, rows, begin: Float64Array.from(begins), end: Float64Array.from(ends), total };
}

/** A box of two records' trees: `total` is what it is drawn with, wide enough for each of the two and all inside. */
export interface Difference extends Merged {
  /** Undefined where the record has no such block. */
  before: Merged | undefined;
  after: Merged | undefined;
}

/** Two flame graphs as one: blocks of the same path of names, whose names are those of `names`. */
export function makeDifferenceTree(
  before: Profile,
  after: Profile,
  options: TreeOptions = {},
): { tree: CallTree<Difference>; names: string[] } {
  const names: string[] = [];
  const ids = new Map<string, number>();
  const nodes: Difference[] = [];
  const inside: Map<number, number>[] = [];
  const top = new Map<number, number>();
  const take = (profile: Profile, side: 'before' | 'after') => {
    const { nodes: merged } = mergePaths(profile, options);
    const place = new Int32Array(merged.length);
    merged.forEach((node, index) => {
      if (node.count === 0) return;
      const text = profile.names[node.name]!;
      const name = ids.get(text) ?? names.push(text) - 1;
      ids.set(text, name);
      const parent = node.parent < 0 ? -1 : place[node.parent]!;
      const siblings = parent < 0 ? top : inside[parent]!;
      let at = siblings.get(name);
      if (at === undefined) {
        const figures = { total: 0, self: 0, count: 0, before: undefined, after: undefined };
        at = nodes.push({ name, depth: node.depth, parent, ...figures }) - 1;
        inside.push(new Map());
        siblings.set(name, at);
      }
      place[index] = at;
      nodes[at]![side] = node;
    });
  };
  take(before, 'before');
  take(after, 'after');
  // From the leaves up: until its turn comes, `total` holds the widths of what is inside.
  for (let at = nodes.length - 1; at >= 0; --at) {
    const node = nodes[at]!;
    const within = node.total;
    node.total = Math.max(within, node.before?.total ?? 0, node.after?.total ?? 0);
    node.self = node.total - within;
    node.count = (node.before?.count ?? 0) + (node.after?.count ?? 0);
    if (node.parent >= 0) nodes[node.parent]!.total += node.total;
  }
  return { tree: layOut({ nodes, inside }), names };
}

/** A line of the call tree, which is opened level by level. */
export interface TreeLine {
  name: number;
  count: number;
  /** Milliseconds; a name inside itself counts once. */
  total: number;
  self: number;
  isLeaf: boolean;
  /** What is below, the heaviest first. */
  open: () => TreeLine[];
}

/** From the top of the threads down to what ran inside. */
export function topDown({ nodes, rows }: CallTree): TreeLine[] {
  // Those inside one node stand together, in the row below its own.
  const first = new Int32Array(nodes.length).fill(-1);
  const count = new Int32Array(nodes.length);
  nodes.forEach(({ parent }, index) => {
    if (parent < 0) return;
    if (count[parent]!++ === 0) first[parent] = index;
  });
  const lines = (from: number, number: number): TreeLine[] =>
    Array.from({ length: number }, (_, at) => {
      const index = from + at;
      const { name, count: calls, total, self } = nodes[index]!;
      return {
        name,
        count: calls,
        total,
        self,
        isLeaf: count[index] === 0,
        open: () => lines(first[index]!, count[index]!),
      };
    });
  return rows[0] ? lines(0, rows[0].count) : [];
}

/** A node of the tree on the way from `at` up, with the figures of the name that the way began at. */
interface Origin {
  at: number;
  count: number;
  total: number;
  self: number;
}

/**
 * From each name up to who ran it. Below the first level the figures are still those of the first level's name: the part
 * of them that was spent on this way.
 */
export function bottomUp({ nodes }: CallTree): TreeLine[] {
  const lines = (origins: readonly Origin[]): TreeLine[] => {
    const groups = new Map<number, Origin[]>();
    for (const origin of origins) {
      const { name } = nodes[origin.at]!;
      const group = groups.get(name);
      if (group) group.push(origin);
      else groups.set(name, [origin]);
    }
    return [...groups]
      .map(([name, members]) => {
        const above = members
          .filter(({ at }) => nodes[at]!.parent >= 0)
          .map((origin) => ({ ...origin, at: nodes[origin.at]!.parent }));
        const sum = (figure: 'count' | 'total' | 'self') =>
          members.reduce((value, member) => value + member[figure], 0);
        return {
          name,
          count: sum('count'),
          total: sum('total'),
          self: sum('self'),
          isLeaf: above.length === 0,
          open: () => lines(above),
        };
      })
      .sort((a, b) => b.self - a.self || b.total - a.total);
  };
  const nested = insideItself(nodes);
  return lines(
    nodes.map(({ count, total, self }, at) => ({ at, count, total: nested[at] ? 0 : total, self })),
  );
}
