// The merged flame graph: blocks of the same path become one, the heaviest to the left.
import type { Profile, Row } from './profile';
import type { Range } from './statistics';

export interface Merged {
  name: number;
  depth: number;
  total: number;
  self: number;
  count: number;
  parent: number;
}

/** Boxes in rows by depth; `begin` and `end` are places on an axis of milliseconds spent. */
export interface CallTree {
  nodes: Merged[];
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

interface Node extends Merged {
  children: Map<number, number>;
}

export function makeCallTree(profile: Profile, options: TreeOptions = {}): CallTree {
  const nodes = mergePaths(profile, options);
  return layOut(nodes);
}

function mergePaths(profile: Profile, { threads, range, foldRecursion }: TreeOptions): Node[] {
  const nodes: Node[] = [];
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
    const siblings = parent < 0 ? top : nodes[parent]!.children;
    let node = siblings.get(block.name);
    if (node === undefined) {
      const depth = parent < 0 ? 0 : nodes[parent]!.depth + 1;
      node =
        nodes.push({ name: block.name, depth, total: 0, self: 0, count: 0, parent, children: new Map() }) - 1;
      siblings.set(block.name, node);
    }
    nodeOf[index] = node;
    nodes[node]!.total += total;
    nodes[node]!.self += total;
    nodes[node]!.count += count;
  });
  for (const node of nodes) node.self = Math.max(0, node.self);
  return nodes;
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
function layOut(nodes: readonly Node[]): CallTree {
  const heavyFirst = (a: number, b: number) => nodes[b]!.total - nodes[a]!.total || a - b;
  const ordered: Merged[] = [];
  const rows: Row[] = [];
  const begins: number[] = [];
  const ends: number[] = [];
  const top = nodes.flatMap((node, index) => (node.parent < 0 ? [index] : []));
  let groups = [{ start: 0, parent: -1, members: top }];
  const place = new Int32Array(nodes.length);
  while (groups.length > 0) {
    const first = ordered.length;
    const inner: typeof groups = [];
    for (const { start, parent, members } of groups) {
      let at = start;
      for (const member of members.sort(heavyFirst)) {
        const { children, ...node } = nodes[member]!;
        if (node.count === 0) continue;
        place[member] = ordered.length;
        begins.push(at);
        ends.push(at + node.total);
        ordered.push({ ...node, parent: parent < 0 ? -1 : place[parent]! });
        if (children.size > 0) inner.push({ start: at, parent: member, members: [...children.values()] });
        at += node.total;
      }
    }
    if (ordered.length > first) rows.push({ first, count: ordered.length - first });
    groups = inner;
  }
  const total = rows[0] ? ends[rows[0].count - 1]! : 0;
  return { nodes: ordered, rows, begin: Float64Array.from(begins), end: Float64Array.from(ends), total };
}
