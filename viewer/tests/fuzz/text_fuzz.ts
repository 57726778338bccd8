// Any text at all as a record: read the same however it comes in parts, and what is read holds together.
import { isDeepStrictEqual } from 'node:util';
import fc from 'fast-check';
import { readText, TextReader } from '../../src/record/text_reader';
import { changed, checkRecord, outcome, parts, type FuzzedCore } from './core';

const lines = [
  'var threads = [',
  '{',
  '}',
  '},',
  ']',
  '],',
  'blocks: [',
  "name: 'a',",
  "name: 'a'",
  "name: 'two",
  "lines',",
  'time: [{b: 0, e: 3.5},{b: 10, e: 12},]',
  'time: [{b: 1e+06, e: 0},]',
  'time: []',
  'time: [',
  "  name: 'Thread 4'",
  '{b: 1e-320, e: 1.79769e+308},',
  '\xef\xbb\xbf',
  '\xff\xfe',
  '\r',
  '',
];

export const core: FuzzedCore = {
  inputs(kept) {
    const line = fc.tuple(fc.nat(12), fc.constantFrom(...lines), fc.constantFrom('\n', '\r\n', '', ' \n'));
    const made = fc
      .array(line, { maxLength: 30 })
      .map((all) =>
        Buffer.from(all.map(([indent, text, end]) => ' '.repeat(indent) + text + end).join(''), 'latin1'),
      );
    return fc.oneof(made, changed(kept, [...lines, '\n', '\r\n', '  ', '    ', '{b:', 'e:', ']', "'", ',']));
  },

  check(input) {
    const whole = outcome(() => readText(input));
    const piecemeal = outcome(() => {
      const reader = new TextReader();
      for (const part of parts(input)) reader.push(part);
      return reader.finish();
    });
    if (typeof whole !== 'string') checkRecord(whole);
    if (!isDeepStrictEqual(piecemeal, whole)) throw new Error('it is read differently in parts');
  },
};
