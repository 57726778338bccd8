import { describe, expect, test } from 'vitest';
import { receiveRecord } from '../../src/record/received';
import { NoRecord, type RawRecord } from '../../src/record/record';
import { recordText } from '../support/make_record';
import { read, tree } from '../support/reading';

const record = () =>
  read(
    recordText([
      {
        id: 4,
        blocks: [
          {
            name: 'a',
            time: [
              [0, 5],
              [6, 8],
            ],
            blocks: [{ name: 'b', time: [[1, 2]] }],
          },
        ],
      },
      { id: 8 },
    ]),
  );
const changed = (change: (record: Record<string, unknown>) => void) => {
  const copy = structuredClone(record()) as unknown as Record<string, unknown>;
  change(copy);
  return () => receiveRecord(copy);
};

describe('A record from another document', () => {
  test('is the same record', () => {
    expect(tree(receiveRecord(structuredClone(record())))).toEqual(tree(record()));
  });

  test('is refused if it is none', () => {
    for (const value of [
      undefined,
      null,
      1,
      'x',
      [],
      {},
      { names: [], threads: [], blocks: [], problems: [] },
    ])
      expect(() => receiveRecord(value)).toThrow(NoRecord);
    expect(changed((copy) => (copy.end = new Float64Array(1)))).toThrow(NoRecord);
    expect(changed((copy) => (copy.names = 'names'))).toThrow(NoRecord);
  });

  test('is refused if its parts point nowhere', () => {
    const wrong: Record<string, unknown>[] = [
      { parent: 1 },
      { parent: 0.5 },
      { parent: -2 },
      { thread: 1 },
      { thread: 2 },
      { name: 9 },
      { first: -1 },
      { count: 2 },
      { count: 3 },
      { count: 1e12 },
    ];
    for (const fields of wrong)
      expect(
        changed((copy) => Object.assign((copy.blocks as object[])[1]!, fields)),
        JSON.stringify(fields),
      ).toThrow(NoRecord);
    expect(changed((copy) => ((copy.blocks as unknown[])[0] = null))).toThrow(NoRecord);
  });

  test('loses intervals that no reader gives', () => {
    const copy = structuredClone(record());
    copy.begin[copy.begin.indexOf(0)] = NaN;
    const received = receiveRecord(copy);
    expect([...received.begin]).toEqual([6, 1]);
    expect(received.problems).toEqual([{ where: 'blocks[0].time[0]', what: 'a time that is no number' }]);
  });

  test('has texts for names, whatever was given', () => {
    const copy = structuredClone(record()) as unknown as Record<keyof RawRecord, unknown>;
    copy.names = ['\u4e2d', { toString: 1 }];
    copy.threads = [null, 'Thread 8'];
    copy.problems = [{ where: 5, what: 'w' }, null];
    copy.moreProblems = -1;
    const received = receiveRecord(copy);
    expect(received.names).toEqual(['?', '(name missing)']);
    expect(received.threads).toEqual(['(name missing)', 'Thread 8']);
    expect(received.problems).toEqual([
      { where: '(name missing)', what: 'w' },
      { where: '(name missing)', what: '(name missing)' },
    ]);
    expect(received.moreProblems).toBe(0);
  });
});
