// Builds a record from spans as other programs tell them: begins and ends in time order, thread by thread.
import { RecordBuilder } from './builder';

interface Block {
  name: string;
  parent: number;
  begin: number[];
  end: number[];
}

/** One thread: what begins is inside what has begun and not ended. */
export class SpanBuilder {
  private readonly blocks: Block[] = [];
  private readonly places = new Map<string, number>();
  private readonly open: number[] = [];

  get depth(): number {
    return this.open.length;
  }

  /** The name of the innermost open span, undefined if none is open. */
  get top(): string | undefined {
    const block = this.blocks[this.open[this.open.length - 1] ?? -1];
    return block?.name;
  }

  /** Milliseconds. */
  begin(name: string, at: number): void {
    const parent = this.open[this.open.length - 1] ?? -1;
    const key = `${parent} ${name}`;
    let block = this.places.get(key);
    if (block === undefined) {
      block = this.blocks.push({ name, parent, begin: [], end: [] }) - 1;
      this.places.set(key, block);
    }
    this.blocks[block]!.begin.push(at);
    this.blocks[block]!.end.push(0);
    this.open.push(block);
  }

  /** Ends the innermost one; what is never ended counts as open. */
  end(at: number): void {
    const { end } = this.blocks[this.open.pop()!]!;
    end[end.length - 1] = at;
  }

  /** Adds the thread to a record. Names become bytes, as a record has them. */
  addTo(record: RecordBuilder, threadName: string, where: string): void {
    const thread = record.addThread();
    record.threads[thread] = utf8(threadName);
    const ids: number[] = [];
    for (const { name, parent, begin, end } of this.blocks) {
      const id = record.addBlock(thread, ids[parent] ?? -1);
      ids.push(id);
      record.setName(id, utf8(name));
      for (let i = 0; i < begin.length; ++i) {
        const fault = record.addInterval(id, begin[i]!, end[i]!);
        if (fault) record.report(where, fault);
      }
    }
  }
}

const encoder = new TextEncoder();

/** The bytes of a text in UTF-8, one character for each. */
function utf8(text: string): string {
  if (/^[\x00-\x7f]*$/.test(text)) return text;
  return Array.from(encoder.encode(text), (byte) => String.fromCharCode(byte)).join('');
}
