import { describe, expect, test } from 'vitest';
import { chromeTrace, speedscope } from '../../src/record/exports';
import { makeProfile, stepAt, type Profile } from '../../src/record/profile';
import { RecordReader } from '../../src/record/reader';
import { NoRecord, type RawRecord } from '../../src/record/record';
import { decodeNames, guessEncoding } from '../../src/record/bytes';
import { largeRecord, recordText } from '../support/make_record';
import { tree } from '../support/reading';

function readParts(...parts: (string | Uint8Array)[]): RawRecord {
  const reader = new RecordReader();
  for (const part of parts) reader.push(typeof part === 'string' ? Buffer.from(part) : part);
  return reader.finish();
}
const readJson = (value: unknown) => readParts(JSON.stringify(value));
const trace = (...traceEvents: unknown[]) => readJson({ traceEvents });
const span = (name: string, ts: number, dur: number, more: object = {}) => ({
  ph: 'X',
  pid: 1,
  tid: 7,
  name,
  ts,
  dur,
  ...more,
});

/** Thread, name, begin, end and depth of each interval. */
const listed = ({ threads, blocks, block, names, begin, end }: Profile) =>
  Array.from(begin, (from, id) => {
    const { thread, name, depth } = blocks[block[id]!]!;
    return [threads[thread]!.name, names[name], Number(from.toFixed(6)), Number(end[id]!.toFixed(6)), depth];
  });

describe("Chrome's trace events", () => {
  test('that this program wrote give the record back', () => {
    const profile = makeProfile(readParts(largeRecord(20_000, 4)));
    const once = makeProfile(readParts([...chromeTrace(profile)].join('')));
    const twice = makeProfile(readParts([...chromeTrace(once)].join('')));
    expect(listed(twice)).toEqual(listed(once));
    // Whole nanoseconds; what takes none of them may be inside the one before it or behind it.
    const long = (of: Profile) => listed(of).filter(([, , begin, end]) => Number(end) - Number(begin) > 1e-6);
    const rough = (of: Profile) =>
      long(of).map(([thread, name, begin, , depth]) => [thread, name, Math.floor(Number(begin) * 10), depth]);
    expect(once.begin.length).toBe(20_000);
    expect(rough(once)).toEqual(rough(profile));
  });

  test('are complete events, begins and ends, from the first one on', () => {
    const record = readJson([
      { ph: 'M', pid: 1, tid: 7, name: 'thread_name', args: { name: 'Main' } },
      span('late', 5000.5, 1000),
      span('frame', 1000, 3000),
      { ph: 'B', pid: 1, tid: 7, name: 'load', ts: 1500 },
      { ph: 'B', pid: 1, tid: 7, name: 'parse', ts: 1600 },
      { ph: 'E', pid: 1, tid: 7, ts: 1700 },
      { ph: 'E', pid: 1, tid: 7, ts: 2000 },
      span('other', 1000, 2, { tid: 8 }),
      { ph: 'B', pid: 1, tid: 8, name: 'waits', ts: 1003 },
    ]);
    expect(record.problems).toEqual([]);
    expect(tree(record)).toEqual([
      {
        name: 'Main',
        blocks: [
          {
            name: 'frame',
            time: [[0, 3]],
            blocks: [{ name: 'load', time: [[0.5, 1]], blocks: [{ name: 'parse', time: [[0.6, 0.7]] }] }],
          },
          { name: 'late', time: [[4.0005, 5.0005]] },
        ],
      },
      {
        name: 'Thread 8',
        blocks: [
          { name: 'other', time: [[0, 0.002]] },
          { name: 'waits', time: [[0.003, 0]] },
        ],
      },
    ]);
    expect(stepAt(makeProfile(record), 1000)).toBe(0);
  });

  test('of several processes have them in the names of the threads', () => {
    const record = trace(
      { ph: 'M', pid: 1, name: 'process_name', args: { name: 'Browser' } },
      span('a', 0, 1),
      span('b', 0, 1, { pid: 2 }),
    );
    expect(record.threads).toEqual(['Browser: Thread 7', 'process 2: Thread 7']);
  });

  test('that touch, or overlap a little, stand side by side or inside', () => {
    const record = trace(
      span('a', 0, 10),
      span('a', 10, 5),
      span('none', 15, 0),
      span('b', 20, 10),
      span('sticks out', 25, 10),
    );
    expect(tree(record)).toEqual([
      {
        name: 'Thread 7',
        blocks: [
          {
            name: 'a',
            time: [
              [0, 0.01],
              [0.01, 0.015],
            ],
            blocks: [{ name: 'none', time: [[0.015, 0.015]] }],
          },
          { name: 'b', time: [[0.02, 0.03]], blocks: [{ name: 'sticks out', time: [[0.025, 0.03]] }] },
        ],
      },
    ]);
    expect(record.problems).toEqual([
      {
        where: 'Thread 7',
        what: '1 spans end after the one that they begin in: they are shown up to its end',
      },
    ]);
  });

  test('of other kinds are counted, and a file without spans is refused', () => {
    const record = trace(span('a', 0, 1), { ph: 'C', ts: 1 }, { ph: 'X', name: 'no time' }, 5, {
      ph: 'E',
      pid: 1,
      tid: 7,
      ts: 3,
    });
    expect(record.problems).toEqual([
      { where: 'Thread 7', what: '1 ends without their begin are left out' },
      { where: 'the file', what: '3 events are left out: they are no spans of time on a thread' },
    ]);
    expect(() => trace()).toThrow(
      new NoRecord('The file has trace events, but none that are spans of time on a thread.'),
    );
  });

  test('may lack the end of their list', () => {
    const text = JSON.stringify([span('a', 0, 1, { args: { x: {} } }), span('b', 2, 1)]);
    for (const [cut, names] of [
      [text.slice(0, -1), ['a', 'b']],
      [text.slice(0, -1) + ',\n', ['a', 'b']],
      [text.slice(0, -20), ['a']],
      [`{"displayTimeUnit":"ms","traceEvents":${text.slice(0, -20)}`, ['a']],
    ] as const) {
      const record = readParts(cut);
      expect(record.names).toEqual(names);
      expect(record.problems.at(-1)!.what).toBe('the file ends before its list of events does');
    }
  });

  test('keep names in any language', () => {
    const { names } = trace(span('Привет, мир', 0, 1));
    expect(decodeNames(names, guessEncoding(names))).toEqual(['Привет, мир']);
  });
});

describe("speedscope's files", () => {
  test('that this program wrote give the record back', () => {
    const profile = makeProfile(readParts(largeRecord(20_000, 4)));
    expect(listed(makeProfile(readParts([...speedscope(profile, 'x')].join(''))))).toEqual(listed(profile));
  });

  const file = (...profiles: unknown[]) =>
    readJson({ shared: { frames: [{ name: 'a' }, { name: 'b' }, { name: 'c' }] }, profiles });

  test('of samples become spans that last while the stack is the same', () => {
    const record = file({
      type: 'sampled',
      name: 'main',
      unit: 'microseconds',
      startValue: 0,
      samples: [[0, 1], [0, 1], [0, 2], [], [0]],
      weights: [10, 10, 5, 5, 1],
    });
    expect(tree(record)).toEqual([
      {
        name: 'main',
        blocks: [
          {
            name: 'a',
            time: [
              [0, 0.025],
              [0.03, 0.031],
            ],
            blocks: [
              { name: 'b', time: [[0, 0.02]] },
              { name: 'c', time: [[0.02, 0.025]] },
            ],
          },
        ],
      },
    ]);
  });

  test('of events out of order are read as far as they are in order', () => {
    const record = file({
      type: 'evented',
      unit: 'none',
      startValue: 100,
      events: [
        { type: 'O', frame: 0, at: 100 },
        { type: 'C', frame: 1, at: 105 },
        { type: 'C', frame: 0, at: 110 },
        { type: 'O', frame: 2, at: 90 },
      ],
    });
    expect(tree(record)).toEqual([{ name: 'Profile 1', blocks: [{ name: 'a', time: [[0, 10]] }] }]);
    expect(record.problems.map(({ what }) => what)).toEqual([
      'its unit is none: taken for milliseconds',
      '2 events are left out: they are out of order',
    ]);
    expect(() => file()).toThrow(new NoRecord('The speedscope file holds no spans of time.'));
  });
});

describe('Files of other kinds are refused with a sentence', () => {
  test.each([
    ['', 'The file is empty.'],
    ['[1,2', 'This is no profile record: it should begin with "var threads = [", but it begins with "[1,2".'],
    ['{"a": ', 'The file begins as JSON does, but is damaged or cut.'],
    [
      '{"a": 1}',
      "The file is JSON of some other kind. What can be shown are the profiler's records, Chrome's trace events and speedscope's files.",
    ],
    ['{"nodes":[],"timeDeltas":[]}', "The file is a CPU profile of Chrome's debugger. "],
    ['{"meta":{},"threads":[]}', 'The file is a profile of the Firefox profiler. '],
    ['\x1f\x8b\x08', 'This is no profile record: it is compressed (gzip). Unpack it first.'],
    ['PK\x03\x04', 'This is no profile record: it is a zip archive. Unpack it first.'],
    ['MZ\x90\x00', 'This is no profile record: it is a Windows program.'],
    ['\xff\xfev\0a\0r\0', 'This is no profile record: the file is UTF-16, a record is plain bytes.'],
    [
      '\0\0\0\0',
      'This is no profile record: it should begin with "var threads = [", but it begins with "····".',
    ],
  ])('%j', (content, sentence) => {
    const data = Buffer.from(content, 'latin1');
    let said: unknown;
    try {
      readParts(data);
    } catch (error) {
      said = error;
    }
    expect(said).toBeInstanceOf(NoRecord);
    expect((said as NoRecord).message.slice(0, sentence.length)).toBe(sentence);
  });

  test('JSON that is longer than a text can be, while it is read', () => {
    const reader = new RecordReader();
    const part = new Uint8Array(64 << 20).fill(32);
    part.set(Buffer.from('{"traceEvents":['));
    expect(() => {
      for (let i = 0; i < 9; ++i) reader.push(part);
    }).toThrow(new NoRecord('The file is JSON of more than 512 MB, which is more than can be read.'));
  });

  test('but not a record in parts of any size, nor one whose first line is lost', () => {
    const text = recordText([{ id: 4, blocks: [{ name: 'a', time: [[0, 1]] }] }]);
    for (const size of [1, 7, 100])
      expect(tree(readParts(...text.match(new RegExp(`[^]{1,${size}}`, 'g'))!))).toEqual([
        { name: 'Thread 4', blocks: [{ name: 'a', time: [[0, 1]] }] },
      ]);
    expect(readParts(text.slice(text.indexOf('{'))).names).toEqual(['a']);
  });
});
