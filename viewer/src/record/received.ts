// A record that another document has read: nothing about it is certain, not even that it is one.
import { RecordBuilder } from './builder';
import { NoRecord, type Problem, type RawBlock, type RawRecord } from './record';

/** Builds the record anew from what is right in `value`. Throws NoRecord where that is nothing. */
export function receiveRecord(value: unknown): RawRecord {
  if (!isRecord(value)) throw new NoRecord('The script gave something that is no profile record.');
  const builder = new RecordBuilder();
  for (const thread of value.threads) builder.threads[builder.addThread()] = asText(thread);
  let left = value.begin.length;
  value.blocks.forEach((block: unknown, index) => {
    const { name, thread, parent, first, count } = (block ?? {}) as Partial<RawBlock>;
    const fits =
      isIndex(thread, value.threads.length) &&
      isIndex(name, value.names.length) &&
      (parent === -1 || (isIndex(parent, index) && builder.blocks[parent]!.thread === thread)) &&
      isIndex(first, value.begin.length + 1) &&
      isIndex(count, Math.min(left, value.begin.length - first) + 1);
    if (!fits) throw new NoRecord('The script gave a record that contradicts itself.');
    left -= count;
    const added = builder.addBlock(thread, parent);
    builder.setName(added, asText(value.names[name]));
    for (let i = first; i < first + count; ++i) {
      const fault = builder.addInterval(added, value.begin[i]!, value.end[i]!);
      if (fault) builder.report(`blocks[${index}].time[${i - first}]`, fault);
    }
  });
  const record = builder.finish();
  // The document that read the script has already told what it left out.
  for (const problem of value.problems.slice(0, 200)) record.problems.push(asProblem(problem));
  record.moreProblems += isIndex(value.moreProblems, Infinity) ? value.moreProblems : 0;
  return record;
}

type Received = Record<keyof RawRecord, unknown[]> & {
  begin: Float64Array;
  end: Float64Array;
  moreProblems: unknown;
};

function isRecord(value: unknown): value is Received {
  if (typeof value !== 'object' || value === null) return false;
  const { names, threads, blocks, begin, end, problems } = value as Record<keyof RawRecord, unknown>;
  return (
    [names, threads, blocks, problems].every(Array.isArray) &&
    begin instanceof Float64Array &&
    end instanceof Float64Array &&
    begin.length === end.length
  );
}

function isIndex(value: unknown, stop: number): value is number {
  return Number.isSafeInteger(value) && (value as number) >= 0 && (value as number) < stop;
}

/** One character for each byte, as readers give names. */
function asText(value: unknown): string {
  return typeof value === 'string' ? value.replace(/[^\x00-\xff]/g, '?') : '(name missing)';
}

function asProblem(value: unknown): Problem {
  const { where, what } = (value ?? {}) as Partial<Problem>;
  return { where: asText(where), what: asText(what) };
}
