// Boxes of a call tree by the names from the top down to them, which hold when the tree is made anew.
import type { CallTree } from './call_tree';

export function pathOfNode({ nodes }: CallTree, node: number): number[] {
  const path: number[] = [];
  for (let at = node; at >= 0; at = nodes[at]!.parent) path.push(nodes[at]!.name);
  return path.reverse();
}

/** Undefined if the tree has no such path. */
export function nodeOfPath({ nodes, rows }: CallTree, path: readonly number[]): number | undefined {
  let parent = -1;
  for (const [depth, name] of path.entries()) {
    const { first, count } = rows[depth] ?? { first: 0, count: 0 };
    let found = -1;
    for (let at = first; at < first + count && found < 0; ++at)
      if (nodes[at]!.name === name && nodes[at]!.parent === parent) found = at;
    if (found < 0) return undefined;
    parent = found;
  }
  return parent < 0 ? undefined : parent;
}

/** Walks from a box to the one around it, the heaviest one in it, or its neighbour in the row. */
export function stepInTree(
  { nodes, rows }: CallTree,
  node: number,
  way: 'left' | 'right' | 'up' | 'down',
): number | undefined {
  const { parent, depth } = nodes[node]!;
  const row = rows[depth]!;
  if (way === 'up') return parent < 0 ? undefined : parent;
  if (way === 'left') return node > row.first ? node - 1 : undefined;
  if (way === 'right') return node + 1 < row.first + row.count ? node + 1 : undefined;
  const below = rows[depth + 1];
  for (let at = below?.first ?? 0; below && at < below.first + below.count; ++at)
    if (nodes[at]!.parent === node) return at;
  return undefined;
}
