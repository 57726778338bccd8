import { describe, expect, test } from 'vitest';
import { chromeTrace, csv, speedscope } from '../../src/record/exports';
import { makeProfile, type Profile } from '../../src/record/profile';
import { statisticsByName } from '../../src/record/statistics';
import { Walker } from '../../src/record/walk';
import { type BlockText, largeRecord, recordText } from '../support/make_record';
import { read, readBlocks } from '../support/reading';
import { spansOfChrome, spansOfSpeedscope, type Span } from '../support/validate';

const chrome = (profile: Profile) => [...chromeTrace(profile)].join('');
const evented = (profile: Profile) => [...speedscope(profile, 'a title')].join('');

/** What every export must give back. */
function spans(profile: Profile): Span[] {
  const walker = new Walker(profile);
  return profile.threads.flatMap(({ name: thread }, index) => {
    const found: Span[] = [];
    let depth = 0;
    walker.walk(
      index,
      (id) => {
        const name = profile.names[profile.blocks[profile.block[id]!]!.name]!;
        found.push({ thread, name, begin: profile.begin[id]!, end: profile.end[id]!, depth: depth++ });
      },
      () => --depth,
    );
    return found;
  });
}

const small = makeProfile(
  read(
    recordText([
      {
        id: 4,
        blocks: [
          {
            name: `it's "quoted" \\`,
            time: [
              [0.0005, 3.5],
              [1234.56, 0],
            ],
            blocks: [{ name: 'b', time: [[1, 2]] }],
          },
        ],
      },
      { id: 8 },
    ]),
  ),
);

describe('Chrome trace events', () => {
  test('of a small record', () => {
    expect(chrome(small)).toBe(
      [
        '{"displayTimeUnit":"ms","traceEvents":[',
        '{"ph":"M","pid":1,"tid":1,"name":"thread_name","args":{"name":"Thread 4"}},',
        `{"ph":"X","pid":1,"tid":1,"ts":0.500,"dur":3499.500,"name":"it's \\"quoted\\" \\\\"},`,
        '{"ph":"X","pid":1,"tid":1,"ts":1000.000,"dur":1000.000,"name":"b"},',
        `{"ph":"X","pid":1,"tid":1,"ts":1234560.000,"dur":0.000,"name":"it's \\"quoted\\" \\\\","args":{"open":true}},`,
        '{"ph":"M","pid":1,"tid":2,"name":"thread_name","args":{"name":"Thread 8"}}',
        ']}',
        '',
      ].join('\n'),
    );
  });

  test('give the record back', () => {
    const profile = makeProfile(read(largeRecord(20_000, 4)));
    const expected = spans(profile);
    const found = spansOfChrome(chrome(profile));
    expect(found.length).toBe(20_000);
    found.forEach((span, i) => {
      const { begin, end, ...rest } = expected[i]!;
      expect(span).toMatchObject(rest);
      expect(Math.abs(span.begin - begin)).toBeLessThan(5.001e-7);
      expect(Math.abs(span.end - end)).toBeLessThan(5.001e-7);
    });
  });
});

describe("speedscope's form", () => {
  test('gives the record back', () => {
    for (const profile of [small, makeProfile(read(largeRecord(20_000, 4)))])
      expect(spansOfSpeedscope(evented(profile))).toEqual(spans(profile));
  });

  test('is in order for a record whose intervals are not', () => {
    const profile = readBlocks(
      { name: 'a', time: [[0, 5]], blocks: [{ name: 'lost', time: [[4, 9]] }] },
      { name: 'b', time: [[3, 7]] },
    );
    expect(
      spansOfSpeedscope(evented(profile))
        .map(({ name }) => name)
        .sort(),
    ).toEqual(['a', 'b', 'lost']);
  });
});

test('Statistics as comma-separated values', () => {
  const profile = readBlocks(
    {
      name: 'a "b", c',
      time: [
        [0, 1],
        [2, 4],
      ],
    },
    { name: 'open', time: [[5, 0]] },
  );
  expect(csv(profile, statisticsByName(profile))).toBe(
    'name,count,open,total,self,mean,median,min,max,deviation\r\n' +
      '"a ""b"", c",2,0,3,3,1.5,1.5,1,2,0.5\r\n' +
      '"open",1,1,0,0,,,,,\r\n',
  );
});

test('Statistics have no digits that the record does not have', () => {
  const profile = readBlocks({
    name: 'a',
    time: [
      [0.1, 0.4],
      [1, 1.6],
    ],
  });
  expect(csv(profile, statisticsByName(profile)).split('\r\n')[1]).toBe(
    '"a",2,0,0.9,0.9,0.45,0.45,0.3,0.6,0.15',
  );
});

test('Names that a table would take for a formula are guarded', () => {
  const names = ['=1+1', '+1', '-1', '@a', '\t=1', "it's", 'a=b'];
  const profile = readBlocks(...names.map((name): BlockText => ({ name, time: [[0, 1]] })));
  expect(
    csv(profile, statisticsByName(profile))
      .split('\r\n')
      .slice(1, -1)
      .map((line) => line.slice(0, line.lastIndexOf('"') + 1)),
  ).toEqual([`"'=1+1"`, `"'+1"`, `"'-1"`, `"'@a"`, `"'\t=1"`, `"it's"`, '"a=b"']);
});
