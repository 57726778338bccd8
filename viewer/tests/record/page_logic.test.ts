// The page's own logic, as far as it needs no page.
import { describe, expect, test } from 'vitest';
import { ChartState, pinched } from '../../src/page/chart/chart_state';
import {
  depthAt,
  frozenHeight,
  layOut,
  rowAt,
  scrollToRow,
  titleAt,
  topOf,
} from '../../src/page/chart/layout';
import type { Chart } from '../../src/page/chart/model';
import { escapeXml, SvgSurface } from '../../src/page/chart/svg';
import { boxColors, changeColor, contrast, luminance } from '../../src/page/colors';
import { formatPointOf, formatSpan, formatTime, inTwo, shortCount, shortened } from '../../src/page/format';
import { History } from '../../src/page/history';
import { meaningOf } from '../../src/page/keys';
import { flatten } from '../../src/page/tree_lines';
import { isViewText, NoView, readView } from '../../src/page/view_text';
import { longestOf, neighbour } from '../../src/page/walk_intervals';
import { makeCallTree, topDown } from '../../src/record/call_tree';
import { sortIntervals } from '../../src/record/sort_intervals';
import { nodeOfPath, pathOfNode, stepInTree } from '../../src/record/tree_path';
import { Walker } from '../../src/record/walk';
import { find, readBlocks } from '../support/reading';

describe('Times', () => {
  test('have the six digits of a stamp', () => {
    expect([0, 1911.76, 0.0723456, 1e-5, 999.9999, 123456.7, NaN].map((time) => formatTime(time))).toEqual([
      '0',
      '1.91176 s',
      '72.3456 µs',
      '10 ns',
      '1 s',
      '123.457 s',
      '–',
    ]);
    expect(formatTime(0.0723456, 3)).toBe('72.3 µs');
  });

  test('of a span are told apart', () => {
    expect(formatSpan({ from: 1911.76, to: 1911.832 })).toBe('1.91176 s to 1.911832 s: 72 µs');
    expect(formatSpan({ from: 0, to: 1000 })).toBe('0 to 1 s: 1 s');
    expect(formatPointOf(500000.0001, 0.001)).toBe('500.0000001 s');
  });
});

describe('Names', () => {
  test('that are long lose their middle', () => {
    expect(shortened('abcdefghij', 10)).toBe('abcdefghij');
    expect(shortened('abcdefghijk', 10)).toBe('abcde…hijk');
    expect(shortened('x'.repeat(10_000) + 'leaf', 12)).toBe('xxxxxxx…leaf');
    expect(shortened('two\nlines', 20)).toBe('two␤lines');
  });

  test('are cut so that their end stays', () => {
    expect(inTwo('short')).toEqual(['', 'short']);
    expect(inTwo('std::vector<int>::emplace_back')).toEqual(['std::vector<int>', '::emplace_back']);
  });

  test('Counts fit the axis', () => {
    expect([0, 9999, 10_000, 12_345, 1_250_000, 0.5].map(shortCount)).toEqual([
      '0',
      '9999',
      '10k',
      '12.3k',
      '1.25M',
      '',
    ]);
  });
});

const chart = (rows: number[], pinned = 0): Chart => ({
  lanes: rows.map((count, index) => ({
    title: `lane ${index}`,
    note: '',
    thread: index,
    rows: Array.from({ length: count }, (_, row) => ({ first: index * 100 + row * 10, count: 10 })),
    collapsible: false,
    collapsed: false,
  })),
  pinned,
  begin: new Float64Array(0),
  end: new Float64Array(0),
  names: [],
  nameOf: () => 0,
  isOpen: () => false,
});

describe('The layout', () => {
  const lanes = chart([2, 1]);
  const { places, height } = layOut(lanes);

  test('stands lane below lane', () => {
    expect(places).toEqual([
      { lane: 0, top: 0, bottom: 64 },
      { lane: 1, top: 64, bottom: 110 },
    ]);
    expect(height).toBe(110);
    expect(topOf(lanes, places, 15)).toBe(40);
    expect(topOf(lanes, places, 999)).toBeUndefined();
    expect(rowAt(lanes, places, 45)).toEqual({ first: 10, count: 10 });
    expect(rowAt(lanes, places, 10)).toBeUndefined();
    expect([5, 30, 70, 200].map((y) => titleAt(places, y, 0, 0))).toEqual([0, undefined, 1, undefined]);
    expect(titleAt(places, 0, 0, 30), 'a title that stays in view').toBe(0);
  });

  test('scrolls no more than it has to', () => {
    expect(scrollToRow(0, 100, 0, 40)).toBe(0);
    expect(scrollToRow(50, 100, 0, 40)).toBe(18);
    expect(scrollToRow(0, 100, 0, 90)).toBe(26);
    expect(scrollToRow(0, 30, 0, 90), 'where there is room for little').toBe(68);
    expect(scrollToRow(77, 100, 64, 40), 'in a pinned lane').toBe(77);
  });

  test('keeps pinned lanes unless they take most of the view', () => {
    const pinned = chart([2, 1], 1);
    expect(frozenHeight(pinned, places, 200)).toBe(64);
    expect(frozenHeight(pinned, places, 100)).toBe(0);
    expect(frozenHeight(lanes, places, 200)).toBe(0);
    expect([depthAt(10, 64, 30), depthAt(70, 64, 30)]).toEqual([10, 100]);
  });
});

describe('A chart', () => {
  test('shows no more than there is, and zooms where the pointer is', () => {
    const state = new ChartState();
    state.reset(1000);
    state.zoom(2, 0.25);
    expect(state.range.value).toEqual({ from: 125, to: 625 });
    state.pan(5);
    expect(state.range.value).toEqual({ from: 500, to: 1000 });
    state.reveal(10, 20);
    expect(state.range.value).toEqual({ from: 0, to: 500 });
    state.reveal(700, 700.001);
    expect(state.range.value.to - state.range.value.from).toBeCloseTo(0.0036, 9);
  });

  test('keeps the times under two fingers', () => {
    expect(pinched({ from: 100, to: 200 }, [0.25, 0.75], [0, 1])).toEqual({ from: 125, to: 175 });
    expect(pinched({ from: 100, to: 200 }, [0, 1], [0.5, 1])).toEqual({ from: 0, to: 200 });
  });
});

describe('History', () => {
  test('goes back and forward, and forgets what lay ahead', () => {
    const history = new History<number>((a, b) => a === b, 3);
    for (const place of [1, 2, 2, 3]) history.visit(place);
    expect([history.go(-1), history.go(-1), history.go(-1)]).toEqual([2, 1, undefined]);
    expect([history.canGoBack, history.canGoForward]).toEqual([false, true]);
    expect(history.go(1)).toBe(2);
    history.visit(9);
    expect(history.go(1)).toBeUndefined();
    history.visit(10);
    expect([history.go(-1), history.go(-1), history.go(-1)], 'three are kept').toEqual([9, 2, undefined]);
  });

  test('keeps what a place was like last, and what lies ahead of it', () => {
    const history = new History<{ id: number; scroll: number }>((a, b) => a.id === b.id);
    for (const [id, scroll] of [
      [1, 10],
      [2, 20],
      [3, 30],
    ] as const)
      history.visit({ id, scroll });
    history.go(-1);
    history.visit({ id: 2, scroll: 25 });
    expect(history.go(1)).toEqual({ id: 3, scroll: 30 });
    expect(history.go(-1)).toEqual({ id: 2, scroll: 25 });
  });
});

describe('Keys', () => {
  test.each([
    ['w', 'KeyW', 'w'],
    ['W', 'KeyW', 'w'], // Caps Lock
    ['ц', 'KeyW', 'w'],
    ['т', 'KeyN', 'n'],
    ['z', 'KeyW', 'w'], // the place, on a French keyboard
    ['n', 'KeyL', 'n'], // the letter, on another Latin one
    ['&', 'Digit1', '1'],
    ['+', 'BracketRight', '+'],
    ['Add', 'NumpadAdd', '+'],
    ['ArrowLeft', 'ArrowLeft', 'ArrowLeft'],
    ['?', 'Slash', '?'],
  ])('%s at %s means %s', (key, code, meaning) => {
    expect(meaningOf({ key, code })).toBe(meaning);
  });
});

describe('Colours', () => {
  const names = Array.from({ length: 3000 }, (_, n) => `name ${n}`);
  const grounds = { light: '#ffffff', dark: '#15191f' };
  const fills = (dark: boolean, palette: 'hues' | 'apart') => [
    ...new Map(boxColors(names, dark, palette).map((color) => [color.fill, color])).values(),
  ];

  test.each(['hues', 'apart'] as const)(
    'of %s stand out against the ground, and text against them',
    (palette) => {
      for (const dark of [false, true])
        for (const { fill, text } of fills(dark, palette)) {
          expect(contrast(fill, dark ? grounds.dark : grounds.light), fill).toBeGreaterThanOrEqual(3);
          expect(contrast(fill, text), `${text} on ${fill}`).toBeGreaterThanOrEqual(4.5);
        }
    },
  );

  test('of a change say more, less and the same', () => {
    const color = (before: number, after: number) => changeColor(before, after, false).fill;
    expect(new Set([color(1, 1.05), color(1, 1.3), color(1, 3)]).size).toBe(3);
    expect(color(1, 1.01)).toBe(color(1, 1));
    expect(color(0, 1)).toBe(color(1, 9));
    expect(color(1, 2)).not.toBe(color(2, 1));
  });

  /** A colour as eyes without green cones see it, in the space where distance is difference. */
  function seen(color: string): number[] {
    const linear = [1, 3, 5].map((at) => luminance(`#${color.slice(at, at + 2).repeat(3)}`));
    const deuteranopia = [
      [0.367322, 0.860646, -0.227968],
      [0.280085, 0.672501, 0.047413],
      [-0.01182, 0.04294, 0.968881],
    ];
    const [r, g, b] = deuteranopia.map((row) =>
      Math.min(
        1,
        Math.max(
          0,
          row.reduce((sum, part, at) => sum + part * linear[at]!, 0),
        ),
      ),
    ) as [number, number, number];
    const f = (t: number) => (t > 0.008856 ? Math.cbrt(t) : 7.787 * t + 16 / 116);
    const x = f((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047);
    const y = f(0.2126 * r + 0.7152 * g + 0.0722 * b);
    const z = f((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883);
    return [116 * y - 16, 500 * (x - y), 200 * (y - z)];
  }

  test('of the second palette stay apart without green', () => {
    for (const dark of [false, true]) {
      const all = fills(dark, 'apart').map(({ fill }) => seen(fill));
      expect(all.length).toBe(8);
      const distances = all.flatMap((a, i) =>
        all.slice(0, i).map((b) => Math.hypot(...a.map((value, at) => value - b[at]!))),
      );
      expect(Math.min(...distances)).toBeGreaterThan(20);
    }
  });
});

describe('A picture of lines', () => {
  test('has no markup of a name', () => {
    expect(escapeXml('<a href="x">&\u0000\ud800</a>')).toBe(
      '&lt;a href=&quot;x&quot;&gt;&amp;\ufffd\ufffd&lt;/a&gt;',
    );
    const surface = new SvgSurface(10, 20, () => ({ width: 1 }) as TextMetrics);
    surface.fillText('</text><script>', 1, 2);
    surface.save();
    surface.rect(0, 0, 5, 5);
    surface.clip();
    surface.strokeRect(8, 8, -4, 2);
    surface.restore();
    expect(surface.toString()).not.toContain('<script');
    expect(surface.toString().match(/<g /g)).toHaveLength(1);
    expect(surface.toString().match(/<\/g>/g)).toHaveLength(1);
    expect(surface.toString()).toContain('x="4" y="8" width="4" height="2"');
  });
});

describe('A view that was kept', () => {
  test('is read with all that is right in it', () => {
    const text = JSON.stringify({
      kind: 'kexlib profile view',
      view: 'flame',
      range: { from: 1, to: 2 },
      hidden: ['Thread 4', 7],
      renamed: [['Thread 4', 'x'], ['y']],
      selected: { path: ['a', 'b'], thread: 'Thread 4', begin: 5, nth: -1 },
      notes: [{ from: 1, to: 2, text: 'n' }, { from: 2, to: 1, text: 'm' }, null],
      encoding: 'utf-16',
    });
    expect(isViewText(text)).toBe(true);
    expect(readView(text)).toMatchObject({
      view: 'flame',
      range: { from: 1, to: 2 },
      hidden: ['Thread 4'],
      renamed: [['Thread 4', 'x']],
      selected: { path: ['a', 'b'], thread: 'Thread 4', begin: 5, nth: undefined },
      notes: [{ from: 1, to: 2, text: 'n' }],
      encoding: 'utf-8',
      order: 'begin',
    });
  });

  test('is refused if it is none', () => {
    expect(() => readView('{"kind": "kexlib profile view", ')).toThrow(NoView);
    expect(() => readView('[]')).toThrow(NoView);
    expect(isViewText('var threads = [')).toBe(false);
  });
});

const profile = readBlocks(
  {
    name: 'work',
    time: [
      [0, 10],
      [20, 24],
    ],
    blocks: [
      {
        name: 'step',
        time: [
          [1, 2],
          [3, 6],
          [21, 23],
        ],
      },
      { name: 'rest', time: [[7, 9]] },
    ],
  },
  { name: 'work', time: [[30, 45]] },
);
const at = (name: string, begin: number) => find(profile, name, begin);

describe('From block to block', () => {
  test('one goes along the row, to what is around and to what is inside', () => {
    const walker = new Walker(profile);
    const go = (id: number, way: 'left' | 'right' | 'up' | 'down') => neighbour(profile, walker, id, way);
    expect(go(at('step', 3), 'right')).toBe(at('rest', 7));
    expect(go(at('step', 1), 'left')).toBeUndefined();
    expect(go(at('rest', 7), 'up')).toBe(at('work', 0));
    expect(go(at('work', 20), 'down')).toBe(at('step', 21));
    expect(go(at('work', 30), 'down')).toBeUndefined();
    expect(go(at('work', 0), 'up')).toBeUndefined();
  });

  test('the longest is found on the threads that are shown', () => {
    const name = profile.names.indexOf('work');
    expect(longestOf(profile, name, new Set())).toBe(at('work', 30));
    expect(longestOf(profile, name, new Set([0]))).toBeUndefined();
  });

  test('lists are sorted by any key, equal ones by begin', () => {
    const ids = Int32Array.from(profile.begin.keys());
    const sorted = (keyOf: (id: number) => number, descending: boolean) => {
      const work = sortIntervals(ids, keyOf, profile.begin, descending);
      for (let step = work.next(); ; step = work.next()) if (step.done) return [...step.value];
    };
    const begins = (list: number[]) => list.map((id) => profile.begin[id]);
    expect(begins(sorted((id) => profile.begin[id]!, true))).toEqual([30, 21, 20, 7, 3, 1, 0]);
    expect(begins(sorted(() => 0, true))).toEqual([0, 1, 3, 7, 20, 21, 30]);
    expect(begins(sorted((id) => profile.end[id]! - profile.begin[id]!, false))).toEqual([
      1, 7, 21, 3, 20, 0, 30,
    ]);
  });
});

describe('The call tree', () => {
  const tree = makeCallTree(profile);
  const names = (path: readonly number[]) => path.map((name) => profile.names[name]);

  test('has boxes that are found again by their path', () => {
    tree.nodes.forEach((_, node) => expect(nodeOfPath(tree, pathOfNode(tree, node))).toBe(node));
    expect(nodeOfPath(tree, [99])).toBeUndefined();
    expect(nodeOfPath(tree, [])).toBeUndefined();
  });

  test('is walked', () => {
    const heaviest = stepInTree(tree, 0, 'down')!;
    expect(names(pathOfNode(tree, heaviest))).toEqual(['work', 'step']);
    expect(names(pathOfNode(tree, stepInTree(tree, heaviest, 'right')!))).toEqual(['work', 'rest']);
    expect(stepInTree(tree, heaviest, 'up')).toBe(0);
    expect(stepInTree(tree, heaviest, 'left')).toBeUndefined();
    expect(stepInTree(tree, heaviest, 'down')).toBeUndefined();
  });

  test('opens line by line', () => {
    const lines = (open: string[]) =>
      flatten(topDown(tree), new Set(open)).map(({ line, level }) => `${level} ${profile.names[line.name]}`);
    expect(lines([])).toEqual(['0 work']);
    expect(lines([`/${profile.names.indexOf('work')}`])).toEqual(['0 work', '1 step', '1 rest']);
  });
});
