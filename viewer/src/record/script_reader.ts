// Reads the list that a record declares when it was loaded as a script: the way that works from a double click.
import { RecordBuilder } from './builder';
import { bytesOfWestern } from './bytes';
import { NoRecord, type RawRecord } from './record';

/** A block or thread whose list of children is being read. */
interface Level {
  list: unknown[];
  next: number;
  parent: number;
  thread: number;
  where: string;
}

type Fields = Readonly<Record<string, unknown>>;

/**
 * Throws NoRecord if `threads` is no list.
 *
 * The page loads the script in the encoding windows-1252, in which each byte is a character of its own, so that the
 * bytes of names survive.
 */
export function readScript(threads: unknown): RawRecord {
  if (!Array.isArray(threads))
    throw new NoRecord('The script declares no list "threads": it is no profile record.');
  const builder = new RecordBuilder();
  const levels: Level[] = [];

  const descend = (owner: Fields, thread: number, parent: number, where: string) => {
    const { blocks } = owner;
    if (blocks === undefined) return;
    if (Array.isArray(blocks)) levels.push({ list: blocks, next: 0, parent, thread, where });
    else builder.report(where, '"blocks" is no list');
  };

  threads.forEach((thread: unknown, index) => {
    const where = `threads[${index}]`;
    if (!isFields(thread)) return builder.report(where, 'no thread');
    const id = builder.addThread();
    builder.threads[id] = readName(thread, builder, where);
    descend(thread, id, -1, where);
    for (let level; (level = levels[levels.length - 1]);) {
      if (level.next === level.list.length) {
        levels.pop();
        continue;
      }
      const at = level.next++;
      const block: unknown = level.list[at];
      const blockWhere = `${level.where}.blocks[${at}]`;
      if (!isFields(block)) {
        builder.report(blockWhere, 'no block');
        continue;
      }
      const blockId = builder.addBlock(id, level.parent);
      builder.setName(blockId, readName(block, builder, blockWhere));
      readTimes(block, blockId, builder, blockWhere);
      descend(block, id, blockId, blockWhere);
    }
  });
  return builder.finish();
}

function readTimes(block: Fields, id: number, builder: RecordBuilder, where: string): void {
  const { time } = block;
  if (!Array.isArray(time)) return builder.report(where, '"time" is no list');
  for (let i = 0; i < time.length; ++i) {
    const interval: unknown = time[i];
    const { b, e } = isFields(interval) ? interval : ({} as Fields);
    const fault =
      typeof b === 'number' && typeof e === 'number'
        ? builder.addInterval(id, b, e)
        : 'an interval that cannot be read is left out';
    if (fault) builder.report(`${where}.time[${i}]`, fault);
  }
}

function readName(owner: Fields, builder: RecordBuilder, where: string): string {
  if (typeof owner.name !== 'string') {
    builder.report(where, 'a name is missing');
    return '(name missing)';
  }
  return bytesOfWestern(owner.name);
}

function isFields(value: unknown): value is Fields {
  return typeof value === 'object' && value !== null;
}
