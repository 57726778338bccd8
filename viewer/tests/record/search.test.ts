import { describe, expect, test } from 'vitest';
import { makeProfile, type Profile } from '../../src/record/profile';
import { marksOf, parseQuery, Search, type Query } from '../../src/record/search';
import { largeRecord, recordText } from '../support/make_record';
import { read } from '../support/reading';

describe('What is typed', () => {
  const names = (text: string, ...candidates: string[]) => candidates.filter((parse(text) as Query).name!);
  const parse = (text: string) => parseQuery(text);
  const lasts = (text: string, ...candidates: number[]) =>
    candidates.filter((parse(text) as Query).duration!);

  test('is text that a name holds, in capitals or not', () => {
    expect(names(' Work 2 ', 'work 20', 'rework 2', 'work')).toEqual(['work 20', 'rework 2']);
    expect(names('a.c', 'abc', 'a.c')).toEqual(['a.c']);
    expect(parse('  ')).toBeUndefined();
  });

  test('is a regular expression between slashes', () => {
    expect(names('/^draw [12]$/', 'draw 1', 'Draw 2', 'draw 3', 'redraw 1')).toEqual(['draw 1', 'Draw 2']);
    expect(names('a/b', 'a/b', 'ab')).toEqual(['a/b']);
    expect(parse('/(/')).toBe('/(/ is no regular expression.');
  });

  test('is a duration in any unit, milliseconds by itself', () => {
    expect(lasts('> 5 ms', 4.9, 5, 5.1)).toEqual([5.1]);
    expect(lasts('>=5', 4.9, 5, 5.1)).toEqual([5, 5.1]);
    expect(lasts('< 10 us', 0.009, 0.01)).toEqual([0.009]);
    expect(lasts('<= .5 µs', 0.0005, 0.0006)).toEqual([0.0005]);
    expect(lasts('> 1 s <2s', 1000, 1500, 2000)).toEqual([1500]);
    expect(lasts('>1min', 60_000, 60_001)).toEqual([60_001]);
    expect(lasts('>= 0.3 ms', 100.3 - 100)).toEqual([100.3 - 100]); // 0.29999999999999716
  });

  test('is a thread, and all of it together', () => {
    const query = parse('draw > 5 ms thread:16') as Query;
    expect([query.name!('redraw'), query.name!('load')]).toEqual([true, false]);
    expect([query.duration!(6), query.duration!(5)]).toEqual([true, false]);
    expect(['Thread 16', 'Thread 8'].filter(query.thread!)).toEqual(['Thread 16']);
    expect(['The worker', 'worker'].filter((parse('thread:"the w"') as Query).thread!)).toEqual([
      'The worker',
    ]);
    expect((parse('> 5') as Query).name).toBeUndefined();
  });

  test('is taken as it stands between quotes', () => {
    expect(names('"a > 5"', 'a > 5', 'a')).toEqual(['a > 5']);
    expect(lasts('"/x/" > 5', 4, 6)).toEqual([6]);
    expect(parse('"a" b')).toBe('"b" is not understood behind the name.');
    expect(names('operator >', 'operator >>')).toEqual(['operator >>']);
  });
});

const record = recordText([
  {
    id: 16,
    blocks: [
      {
        name: 'main',
        time: [[0, 1000]],
        blocks: [
          {
            name: 'parse',
            time: [
              [100, 200],
              [210, 220],
            ],
          },
        ],
      },
    ],
  },
  { id: 8, blocks: [{ name: 'worker', time: [[50, 900]], blocks: [{ name: 'parse', time: [[100, 200]] }] }] },
]);
const profile = makeProfile(read(record));

function search(text: string, of: Profile = profile, threads = of.threads.map((_, index) => index)): Search {
  return new Search(of, parseQuery(text) as Query, of.names, threads, (thread) => of.threads[thread]!.name);
}
const told = (id: number | undefined) =>
  id === undefined
    ? undefined
    : [profile.threads[profile.blocks[profile.block[id]!]!.thread]!.id, profile.begin[id], profile.end[id]];
const finished = (search: Search) => {
  while (!search.run(1));
  return search;
};

describe('A search', () => {
  test('finds all in time order, between equal stamps in the order of the threads', () => {
    expect([...finished(search('parse')).hits].map(told)).toEqual([
      [16, 100, 200],
      [8, 100, 200],
      [16, 210, 220],
    ]);
    expect([...finished(search('parse', profile, [1, 0])).hits].map(told)).toEqual([
      [8, 100, 200],
      [16, 100, 200],
      [16, 210, 220],
    ]);
    expect([...finished(search('thread:8 < 200')).hits].map(told)).toEqual([[8, 100, 200]]);
    expect([...finished(search('thread:8 > 200')).hits].map(told)).toEqual([[8, 50, 900]]);
    expect(finished(search('none')).found).toBe(0);
  });

  test.each(['before', 'after'])(
    'goes from hit to hit, round the end, both ways, %s it has found all',
    (when) => {
      const under = when === 'before' ? search('parse') : finished(search('parse'));
      let id = under.next({ time: 150 }, 1);
      const seen = [told(id)];
      for (let i = 0; i < 3; ++i) seen.push(told((id = under.next({ id: id! }, 1))));
      expect(seen).toEqual([
        [16, 210, 220],
        [16, 100, 200],
        [8, 100, 200],
        [16, 210, 220],
      ]);
      expect(told(under.next({ id: id! }, -1))).toEqual([8, 100, 200]);
      expect(told(under.next({ time: 0 }, -1))).toEqual([16, 210, 220]);
      expect(told(under.next({ time: 205 }, -1))).toEqual([8, 100, 200]);
      expect(told(under.next({ time: 300 }, 1))).toEqual([16, 100, 200]);
      expect(under.done).toBe(when === 'after');
      const vain = when === 'before' ? search('none') : finished(search('none'));
      expect(vain.next({ time: 0 }, 1)).toBeUndefined();
      expect(vain.next({ id: id! }, -1)).toBeUndefined();
    },
  );

  test('goes through a large record in the order of its hits, in portions', () => {
    const large = makeProfile(read(largeRecord(50_000, 8)));
    const under = search('/query|render/ > 0.010001', large);
    const expected = [...large.begin.keys()].filter(
      (id) =>
        /query|render/.test(large.names[large.blocks[large.block[id]!]!.name]!) &&
        large.end[id]! - large.begin[id]! > 0.010001,
    );
    let portions = 0;
    while (!under.run(0.01)) ++portions;
    expect(portions).toBeGreaterThan(2);
    expect([...under.hits].sort((a, b) => a - b)).toEqual(expected);
    const early = search('/query|render/ > 0.010001', large);
    let id = early.next({ time: 0 }, 1)!;
    for (let place = 0; place < under.found; ++place, id = early.next({ id }, 1)!) {
      expect(id).toBe(under.hits[place]);
      if (place % 100 === 0) expect(under.placeOf(id)).toBe(place);
    }
    expect(id).toBe(under.hits[0]);
  });

  test('marks the parts of a range that have a hit', () => {
    const { hits } = finished(search('parse'));
    expect([...marksOf(profile, hits, { from: 0, to: 1000 }, 10)]).toEqual([0, 1, 1, 0, 0, 0, 0, 0, 0, 0]);
    expect([...marksOf(profile, hits, { from: 110, to: 210 }, 4)]).toEqual([0, 0, 0, 1]);
    expect([...marksOf(profile, hits, { from: 0, to: 50 }, 4)]).toEqual([0, 0, 0, 0]);
  });
});
