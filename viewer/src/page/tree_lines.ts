import type { TreeLine } from '../record/call_tree';

/** A line of the call tree where it stands in the table. */
export interface FlatLine {
  line: TreeLine;
  level: number;
  /** The names down to it. */
  key: string;
}

/** The lines that are seen: those below a line stand behind it if it is open. */
export function flatten(roots: readonly TreeLine[], open: ReadonlySet<string>): FlatLine[] {
  const flat: FlatLine[] = [];
  // Not by recursion: a record may be very deep.
  const waiting: FlatLine[] = [];
  const add = (lines: readonly TreeLine[], level: number, above: string) => {
    for (let at = lines.length - 1; at >= 0; --at)
      waiting.push({ line: lines[at]!, level, key: `${above}/${lines[at]!.name}` });
  };
  add(roots, 0, '');
  for (let next; (next = waiting.pop());) {
    flat.push(next);
    if (open.has(next.key)) add(next.line.open(), next.level + 1, next.key);
  }
  return flat;
}
