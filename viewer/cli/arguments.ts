import { parseArgs } from 'node:util';

export const usage = `profile_tool: converts and compares profile records

  profile_tool chrome RECORD [-o FILE]       Chrome trace events, for trace viewers
  profile_tool speedscope RECORD [-o FILE]   speedscope's evented form
  profile_tool csv RECORD [-o FILE]          count, total, self, mean, median, min, max, deviation of each name
  profile_tool compare BEFORE AFTER          count, total and mean of each block in both

      --encoding NAME    code page of the names; UTF-8 if they are that, else windows-1252
  compare also takes:
      --slower RATIO     blocks whose mean has grown by more than this ratio (1.2: a fifth) give exit status 1
      --at-least MS      but only where a mean is at least that long
      --all              lists every block, not just those that changed by more than 5 %

Exit status: 0, 1 if --slower found a block, 2 if something could not be read or written.`;

/** A command that cannot be understood. */
export class Usage extends Error {}

interface Options {
  record: string;
  output: string | undefined;
  encoding: string | undefined;
}

export interface CompareOptions {
  slower: number | undefined;
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
  const onlyCompare = values.slower !== undefined || values['at-least'] !== undefined || values.all;
  if (kind !== 'compare') {
    if (second !== undefined) throw new Usage(`'${kind}' takes one record`);
    if (onlyCompare) throw new Usage(`--slower, --at-least and --all belong to 'compare'`);
    return { kind, ...options };
  }
  if (second === undefined || more.length > 0) throw new Usage(`'compare' takes two records`);
  return {
    kind,
    second,
    ...options,
    slower: values.slower === undefined ? undefined : positive('--slower', values.slower),
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
