import { makeProfile, type Profile } from '../../src/record/profile';
import type { RawRecord } from '../../src/record/record';
import { readText } from '../../src/record/text_reader';
import { recordText, type BlockText } from './make_record';

/** Each character of the text is a byte. */
export const bytes = (text: string): Uint8Array => Buffer.from(text, 'latin1');

export const read = (text: string) => readText(bytes(text));

/** A record of one thread, read back. */
export const readBlocks = (...blocks: BlockText[]) => makeProfile(read(recordText([{ id: 4, blocks }])));

/** What was read, as nested objects. */
export function tree(record: RawRecord): unknown {
  const inside = (thread: number, parent: number): unknown[] =>
    record.blocks.flatMap((block, index) => {
      if (block.thread !== thread || block.parent !== parent) return [];
      const time = Array.from({ length: block.count }, (_, i) => [
        record.begin[block.first + i],
        record.end[block.first + i],
      ]);
      const blocks = inside(thread, index);
      return [{ name: record.names[block.name], time, ...(blocks.length > 0 ? { blocks } : {}) }];
    });
  return record.threads.map((name, thread) => ({ name, blocks: inside(thread, -1) }));
}

/** The interval of that name that begins then. */
export function find(profile: Profile, name: string, begin: number): number {
  for (let id = 0; id < profile.begin.length; ++id)
    if (profile.names[profile.blocks[profile.block[id]!]!.name] === name && profile.begin[id] === begin)
      return id;
  throw new Error(`no ${name} begins at ${begin}`);
}
