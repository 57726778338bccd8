import { parseArgs } from 'node:util';
import { verdicts, type Verdict } from '../src/record/compare';

export const usage = `profile_tool: converts and compares profile records

  profile_tool chrome RECORD [-o FILE]       Chrome trace events, for trace viewers
  profile_tool speedscope RECORD [-o FILE]   speedscope's evented form
  profile_tool csv RECORD [-o FILE]          count, total, self, mean, median, min, max, deviation of each name
  profile_tool compare BEFORE AFTER          count, total and mean of each block in both

A RECORD is a file of the profiler, Chrome's trace events or a file of speedscope.

      --encoding NAME    code page of the names; UTF-8 if they are that, else windows-1252
  compare also takes:
      --slower RATIO     a guard for builds: blocks of which mean, total or count grew by more than this ratio
                         (1.2: a fifth) fail, beyond what the rounding of the record's times accounts for
      --fail LIST        what fails, one or more of these with commas between them:
                           slower, more-in-total, more-often     mean, total or count grew by more than RATIO
                           from-zero                             a block that took no time takes some now
                           new, gone                             a block that only one record has
                           cannot-be-read                        a record is damaged, or a block's times are lost
                         With --slower alone it is all of them but new.
      --at-least MS      blocks that take less are not looked at (the mean for slower, the total for the others)
      --all              lists every block, not just those that changed by more than 5 %

Exit status: 0 if all is well, 2 if something could not be read or written; of what fails in a comparison the highest
of 1 (slower, more in total, more often), 3 (from zero), 4 (new), 5 (gone), 6 (cannot be read).`;

/** A command that cannot be understood. */
export class Usage extends Error {}

interface Options {
  record: string;
  output: string | undefined;
  encoding: string | undefined;
}

export interface CompareOptions {
  slower: number | undefined;
  /** What fails the build. */
  fail: Verdict[];
  atLeast: number;
  all: boolean;
}

export type Command =
  | (Options & { kind: 'chrome' | 'speedscope' | 'csv' })
  | (Options & CompareOptions & { kind: 'compare'; second: string });

export function parse(texts: string[]): Command | 'help' {
  const { values, positionals } = parsed(texts);
  if (values.help) return 'help';
  const [kind, record, second, ...more] = positionals;
  if (kind === undefined) throw new Usage('a command is missing');
  if (kind !== 'chrome' && kind !== 'speedscope' && kind !== 'csv' && kind !== 'compare')
    throw new Usage(`there is no command '${kind}'`);
  if (record === undefined) throw new Usage('the record is missing');
  const options = { record, output: values.output, encoding: values.encoding };
  const onlyCompare = [values.slower, values.fail, values['at-least'], values.all].some(
    (value) => value !== undefined,
  );
  if (kind !== 'compare') {
    if (second !== undefined) throw new Usage(`'${kind}' takes one record`);
    if (onlyCompare) throw new Usage(`--slower, --fail, --at-least and --all belong to 'compare'`);
    return { kind, ...options };
  }
  if (second === undefined || more.length > 0) throw new Usage(`'compare' takes two records`);
  const slower = values.slower === undefined ? undefined : positive('--slower', values.slower);
  return {
    kind,
    second,
    ...options,
    slower,
    fail: failing(values.fail, slower !== undefined),
    atLeast: values['at-least'] === undefined ? 0 : positive('--at-least', values['at-least']),
    all: values.all ?? false,
  };
}

function parsed(texts: string[]) {
  try {
    return parseArgs({
      args: texts,
      allowPositionals: true,
      options: {
        help: { type: 'boolean', short: 'h' },
        output: { type: 'string', short: 'o' },
        encoding: { type: 'string' },
        slower: { type: 'string' },
        fail: { type: 'string' },
        'at-least': { type: 'string' },
        all: { type: 'boolean' },
      },
    });
  } catch (error) {
    throw new Usage((error as Error).message);
  }
}

function positive(option: string, text: string): number {
  const value = Number(text);
  if (!(value > 0 && value < Infinity)) throw new Usage(`${option} takes a number above 0, not '${text}'`);
  return value;
}

function failing(list: string | undefined, haveRatio: boolean): Verdict[] {
  if (list === undefined) return haveRatio ? verdicts.filter((verdict) => verdict !== 'new') : [];
  const known = new Map(verdicts.map((verdict) => [verdict.replaceAll(' ', '-'), verdict]));
  return list.split(',').map((word) => {
    const verdict = known.get(word);
    if (!verdict) throw new Usage(`--fail knows ${[...known.keys()].join(' ')}, not '${word}'`);
    if (!haveRatio && ['slower', 'more in total', 'more often'].includes(verdict))
      throw new Usage(`--fail ${word} needs --slower RATIO`);
    return verdict;
  });
}
