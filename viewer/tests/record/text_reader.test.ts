import { describe, expect, test } from 'vitest';
import { NoRecord } from '../../src/record/record';
import { readText, TextReader } from '../../src/record/text_reader';
import { largeRecord, recordText } from '../support/make_record';
import { bytes, read, tree } from '../support/reading';

const example = [
  'var threads = [',
  '{',
  '  blocks: [',
  '    {',
  "      name: 'load',",
  '      blocks: [',
  '        {',
  "          name: 'parse',",
  '          time: [{b: 0.5, e: 2.25},]',
  '        },',
  '      ],',
  '      time: [{b: 0, e: 3.5},{b: 10, e: 12},]',
  '    },',
  '  ],',
  "  name: 'Thread 1234'",
  '},',
  ']',
  '',
];
const exampleTree = [
  {
    name: 'Thread 1234',
    blocks: [
      {
        name: 'load',
        time: [
          [0, 3.5],
          [10, 12],
        ],
        blocks: [{ name: 'parse', time: [[0.5, 2.25]] }],
      },
    ],
  },
];

describe('A whole record', () => {
  test('is read with line ends of Windows and of Unix', () => {
    for (const lineEnd of ['\r\n', '\n']) {
      const record = read(example.join(lineEnd));
      expect(record.problems).toEqual([]);
      expect(tree(record)).toEqual(exampleTree);
    }
  });

  test('is the same however it comes in parts', () => {
    const data = bytes(example.join('\r\n'));
    for (let size = 1; size < data.length; ++size) {
      const reader = new TextReader();
      for (let at = 0; at < data.length; at += size) reader.push(data.subarray(at, at + size));
      const record = reader.finish();
      expect(record.problems).toEqual([]);
      expect(tree(record)).toEqual(exampleTree);
    }
  });

  test('may be empty', () => {
    const record = read('var threads = [\r\n]\r\n');
    expect(record.threads).toEqual([]);
    expect(record.problems).toEqual([]);
  });

  test('may have a thread without blocks', () => {
    const record = read("var threads = [\r\n{\r\n  name: 'Thread 8'\r\n},\r\n]\r\n");
    expect(tree(record)).toEqual([{ name: 'Thread 8', blocks: [] }]);
    expect(record.problems).toEqual([]);
  });

  test('may begin with a byte order mark', () => {
    expect(tree(read('\xef\xbb\xbf' + example.join('\n')))).toEqual(exampleTree);
  });

  test('keeps each number exactly', () => {
    const numbers = [
      '4.94066e-324',
      '1e-05',
      '0.000123457',
      '0.1',
      '12.3457',
      '123457',
      '1e+06',
      '1.23457e+06',
      '1.79769e+308',
    ];
    const time = numbers.map((number) => `{b: ${number}, e: ${number}},`).join('');
    const record = read(
      recordText([{ id: 4, blocks: [{ name: 'a', time: [] }] }]).replace('time: []', `time: [${time}]`),
    );
    expect(record.problems).toEqual([]);
    expect([...record.begin]).toEqual(numbers.map(Number));
  });

  test('reads a million intervals on eight threads and two million on one line', () => {
    expect(readText(new TextEncoder().encode(largeRecord(1_000_000, 8))).begin.length).toBe(1_000_000);
    const line = Array.from({ length: 2_000_000 }, (_, i) => `{b: ${i}, e: ${i}.5},`).join('');
    const data = bytes(
      `var threads = [\n{\n  blocks: [\n    {\n      name: 'a',\n      time: [${line}]\n    },\n  ],\n  name: 'Thread 4'\n},\n]\n`,
    );
    const reader = new TextReader();
    for (let at = 0; at < data.length; at += 4 << 20) reader.push(data.subarray(at, at + (4 << 20)));
    const record = reader.finish();
    expect(record.problems).toEqual([]);
    expect(record.begin.length).toBe(2_000_000);
    expect(record.end[1_999_999]).toBe(1_999_999.5);
  });

  test('may be deeper than any call stack', () => {
    const lines: string[] = ['var threads = [', '{'];
    for (let level = 0; level < 3000; ++level) {
      const indent = ' '.repeat(2 + 4 * level);
      lines.push(`${indent}blocks: [`, `${indent}  {`, `${indent}    name: 'x',`);
    }
    for (let level = 2999; level >= 0; --level) {
      const indent = ' '.repeat(2 + 4 * level);
      lines.push(`${indent}    time: [{b: 1, e: 2},]`, `${indent}  },`, `${indent}],`);
    }
    lines.push("  name: 'Thread 4'", '},', ']', '');
    const record = read(lines.join('\n'));
    expect(record.problems).toEqual([]);
    expect(record.blocks.length).toBe(3000);
    expect(record.blocks[2999]!.depth).toBe(2999);
  });
});

describe('A name', () => {
  const nameRead = (name: string) => {
    const record = read(
      recordText([{ id: 4, blocks: [{ name: name.replaceAll('\n', '\r\n'), time: [[1, 2]] }] }]),
    );
    expect(record.problems).toEqual([]);
    expect(record.begin.length).toBe(1);
    return record.names;
  };

  test.each([
    ["it's"],
    ["'"],
    ["a',"],
    ["',"],
    ['back\\slash\\'],
    ['"double"'],
    ['</script><script>alert(1)</script>'],
    ['two\nlines'],
    ['ends in a line break\n'],
    ['\n'],
    ['{'],
    ['carriage\rreturn'],
    [''],
    ['  blanks  '],
    ['\x81\x5c\xff\x00'],
  ])('survives: %j', (name) => {
    expect(nameRead(name)).toEqual([name]);
  });

  test('of a megabyte survives', () => {
    expect(nameRead('x'.repeat(1 << 20))).toEqual(['x'.repeat(1 << 20)]);
  });
});

describe('A damaged record', () => {
  /** The example with a line changed; `undefined` takes it out. */
  const damaged = (line: number, text: string | undefined) => {
    const lines: string[] = [...example];
    if (text === undefined) lines.splice(line - 1, 1);
    else lines[line - 1] = text;
    return read(lines.join('\r\n'));
  };

  test('is shown but for the line that is not understood', () => {
    const record = damaged(10, '        }, xyz');
    expect(record.problems[0]).toEqual({ where: 'line 10', what: 'not understood and left out: "}, xyz"' });
    expect(tree(record)).toEqual(exampleTree);
  });

  test.each([1, 2, 3, 4, 6, 7, 10, 11, 13, 14, 16])('keeps every interval without line %i', (line) => {
    const record = damaged(line, undefined);
    expect([...record.begin]).toEqual([0.5, 0, 10]);
    expect(tree(record)).toEqual(exampleTree);
  });

  test('shows a block whose name is lost', () => {
    const record = damaged(8, '          nXme: what');
    expect(record.problems).toEqual([{ where: 'line 8', what: 'not understood and left out: "nXme: what"' }]);
    expect(record.names).toEqual(['load', '(name missing)']);
    expect([...record.begin]).toEqual([0.5, 0, 10]);
  });

  test('shows what there is of a name that was cut', () => {
    const record = damaged(8, "          name: 'par");
    expect(record.problems).toEqual([{ where: 'line 8', what: 'a name without its end' }]);
    expect(record.names).toEqual(['load', 'par']);
  });

  test('gives the thread a name that stands where its name does', () => {
    const record = read("var threads = [\n{\n{\nname: 'load',\n  name: 'Thread 4\n},\n]\n");
    expect(tree(record)).toEqual([{ name: 'Thread 4', blocks: [{ name: 'load', time: [] }] }]);
  });

  test('leaves out the interval that cannot be read, and only that', () => {
    for (const bad of [
      '{b: 1, e: x},',
      '{b 1, e: 2},',
      '{},',
      '{b: nan, e: 2},',
      '{b: -1, e: 2},',
      '{b: 1, e: inf},',
    ]) {
      const record = damaged(12, `      time: [{b: 0, e: 3.5},${bad}{b: 10, e: 12},]`);
      expect(record.problems).toEqual([
        { where: 'line 12', what: 'an interval that cannot be read is left out' },
      ]);
      expect([...record.begin]).toEqual([0.5, 0, 10]);
    }
  });

  test('leaves out intervals that cannot be', () => {
    const record = damaged(12, '      time: [{b: 0, e: 3.5},{b: 3, e: 4},{b: 9, e: 8},{b: 10, e: 12},]');
    expect(record.problems).toEqual([
      { where: 'line 12', what: 'an interval that begins before the one before it has ended' },
      { where: 'line 12', what: 'an interval that ends before it begins' },
    ]);
    expect([...record.begin]).toEqual([0.5, 0, 10]);
  });

  test('is shown as far as it goes when it is cut anywhere', () => {
    const text = example.join('\r\n');
    for (let length = 20; length < text.length - 4; ++length) {
      const record = read(text.slice(0, length));
      const { where, what } = record.problems[record.problems.length - 1]!;
      expect(what).toBe('the file ends before the record does: it was cut, or never written to its end');
      expect(where).toBe(`line ${text.slice(0, length).split('\n').length}`);
      const whole = [...text.slice(0, length).matchAll(/\{b: [^}]*\}/g)].length;
      expect(record.begin.length).toBe(whole);
    }
  });

  test('reports at most two hundred places and counts the rest', () => {
    const record = read('var threads = [\n' + 'nonsense\n'.repeat(500) + ']\n');
    expect(record.problems.length).toBe(200);
    expect(record.moreProblems).toBe(300);
  });

  test('is read the same when its indentation is gone', () => {
    const record = read(example.map((line) => line.trimStart()).join('\n'));
    expect(record.problems).toEqual([]);
    expect(tree(record)).toEqual(exampleTree);
  });
});

describe('What is no record is refused with a sentence', () => {
  test.each([
    ['', 'The file is empty.'],
    ['\n\n', 'This is no profile record: it should begin with "var threads = [", but it begins with "".'],
    [
      '<!doctype html>\n<html></html>\n',
      'This is no profile record: it should begin with "var threads = [", but it begins with "<!doctype html>".',
    ],
    ['\xff\xfev\0a\0r\0', 'This is no profile record: the file is UTF-16, a record is plain bytes.'],
  ])('%j', (text, sentence) => {
    expect(() => read(text)).toThrow(new NoRecord(sentence));
  });

  test('before all of it is read', () => {
    const reader = new TextReader();
    expect(() => reader.push(bytes('0123456789\n'.repeat(2000)))).toThrow(NoRecord);
    const line = new TextReader();
    const part = new Uint8Array(4 << 20).fill(120);
    for (let i = 0; i < 8; ++i) line.push(part);
    expect(() => line.finish()).toThrow(NoRecord);
  });
});
