import { runInNewContext } from 'node:vm';
import { expect, test } from 'vitest';
import { NoRecord } from '../../src/record/record';
import { readScript } from '../../src/record/script_reader';
import { largeRecord, recordText } from '../support/make_record';
import { read, tree } from '../support/reading';

const evaluate = (text: string) => runInNewContext(`${text}; threads`) as unknown;
const inThisContext = (value: unknown) => JSON.parse(JSON.stringify(value)) as unknown;

test('A script gives the same record as its text', () => {
  const text = largeRecord(10_000, 3);
  const script = readScript(inThisContext(evaluate(text)));
  expect(script.problems).toEqual([]);
  expect(tree(script)).toEqual(tree(read(text)));
});

test('A thread without blocks and an empty record are read', () => {
  expect(tree(readScript(inThisContext(evaluate(recordText([{ id: 8 }])))))).toEqual([
    { name: 'Thread 8', blocks: [] },
  ]);
  expect(readScript([]).problems).toEqual([]);
});

test('Bytes that came as characters of windows-1252 are bytes again', () => {
  const record = readScript([
    { name: 'Thread 1', blocks: [{ name: 'a\xe9\u20ac\x81\u4e2d', time: [{ b: 1, e: 2 }] }] },
  ]);
  expect(record.names).toEqual(['a\xe9\x80\x81?']);
});

test('What is no list is refused', () => {
  for (const value of [undefined, null, 5, 'text', {}])
    expect(() => readScript(value)).toThrow(
      new NoRecord('The script declares no list "threads": it is no profile record.'),
    );
});

test('What is wrong is reported by its place, and the rest is read', () => {
  const record = readScript([
    5,
    {
      name: 'Thread 1',
      blocks: [null, { time: [{ b: 1, e: 2 }, 7, { b: 'x', e: 3 }] }, { name: 'a', time: 'no' }],
    },
    { blocks: 12 },
  ]);
  expect(record.problems).toEqual([
    { where: 'threads[0]', what: 'no thread' },
    { where: 'threads[1].blocks[0]', what: 'no block' },
    { where: 'threads[1].blocks[1]', what: 'a name is missing' },
    { where: 'threads[1].blocks[1].time[1]', what: 'an interval that cannot be read is left out' },
    { where: 'threads[1].blocks[1].time[2]', what: 'an interval that cannot be read is left out' },
    { where: 'threads[1].blocks[2]', what: '"time" is no list' },
    { where: 'threads[2]', what: 'a name is missing' },
    { where: 'threads[2]', what: '"blocks" is no list' },
  ]);
  expect([...record.begin]).toEqual([1]);
});
