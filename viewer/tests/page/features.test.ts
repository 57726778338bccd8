// What one looks for in a record, and how it is kept.
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import type { Page } from 'playwright-core';
import { describe, expect, test } from 'vitest';
import { download, dropFile, inFirefox, painted } from '../support/browser';
import { recordText, type ThreadText } from '../support/make_record';
import {
  cells,
  details,
  isShown,
  press,
  rangeOf,
  selectionFrame,
  status,
  viewerOfTests,
} from '../support/viewer';

const viewer = viewerOfTests();
const threads: ThreadText[] = [
  {
    id: 16,
    blocks: [
      {
        name: 'main loop',
        time: [[0, 1000]],
        blocks: [
          {
            name: 'load',
            time: [[0, 300]],
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
          { name: 'draw', time: [[400, 500]] },
        ],
      },
    ],
  },
  { id: 8, blocks: [{ name: 'worker', time: [[50, 900]], blocks: [{ name: 'parse', time: [[60, 61]] }] }] },
];
const record = recordText(threads);
const manyThreads = recordText(
  Array.from({ length: 40 }, (_, n) => ({ id: n, blocks: [{ name: `of ${n}`, time: [[n, 1000]] }] })),
);
const open = (query = '') => viewer.open({ files: { 'profiler.js': record }, query });

const laneTops = [0, 22 + 3 * 18 + 6];
/** The middle of a row of the timeline at a time. */
async function place(page: Page, time: number, lane: number, depth: number): Promise<[number, number]> {
  const box = (await page.locator('.chart canvas').boundingBox())!;
  return [box.x + (box.width * time) / 1000, box.y + 22 + laneTops[lane]! + 22 + depth * 18 + 9];
}
async function measure(page: Page, from: number, to: number): Promise<void> {
  const [x, y] = await place(page, from, 0, 0);
  const [end] = await place(page, to, 0, 0);
  await page.keyboard.down('Shift');
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(end, y, { steps: 3 });
  await page.mouse.up();
  await page.keyboard.up('Shift');
}
async function find(page: Page, text: string): Promise<void> {
  await press(page, 'Control+f');
  await page.keyboard.type(text);
}
const title = (page: Page) => page.locator('.details h2').innerText();

describe('Lists', () => {
  test('hold all intervals of a name, sorted, each a click away from the timeline', async () => {
    const page = await open();
    await press(page, '3');
    await page.locator('.table-row', { hasText: 'parse' }).click();
    await page.getByRole('button', { name: 'All…' }).click();
    const list = () => cells(page, 'Intervals of the name');
    await expect.poll(list).toEqual([
      ['Thread 16', '100 ms', '100 ms', '100 ms'],
      ['Thread 16', '10 ms', '10 ms', '210 ms'],
      ['Thread 8', '1 ms', '1 ms', '60 ms'],
    ]);
    await page.getByRole('columnheader', { name: 'Begin' }).click();
    await expect.poll(async () => (await list()).map((row) => row[3])).toEqual(['60 ms', '100 ms', '210 ms']);
    await page.locator('.list').getByRole('columnheader', { name: 'Thread' }).click();
    await expect.poll(async () => (await list())[0]![0]).toBe('Thread 16');
    await page.locator('.list .table-row', { hasText: 'Thread 8' }).click();
    await expect.poll(() => details(page)).toContain('from 60 ms on Thread 8');
    expect(await isShown(page, 'Timeline')).toBe('true');
  });

  test('hold the hits of a search by expression, length and thread', async () => {
    const page = await open();
    await find(page, '/^(parse|draw)$/ > 5 ms');
    await expect.poll(() => page.locator('.hits').innerText()).toBe('3');
    await page.getByRole('button', { name: 'All hits' }).click();
    await expect
      .poll(async () => (await cells(page, 'Hits of the search')).map((row) => row.slice(0, 2)))
      .toEqual([
        ['parse', '100 ms'],
        ['draw', '100 ms'],
        ['parse', '10 ms'],
      ]);
    await page.locator('#search').fill('parse thread:8');
    await expect.poll(() => page.locator('.hits').innerText()).toBe('1');
    await page.locator('#search').fill('/(/');
    await expect.poll(() => page.locator('.hits').innerText()).toBe('not understood');
    expect(await page.locator('#search').getAttribute('aria-invalid')).toBe('true');
  });

  test('have hits as marks on the axis, and in the overview of the whole record', async () => {
    const page = await open();
    const marked = (chart: string, fromBottom?: number) =>
      page.locator(chart).evaluate((element, up) => {
        const canvas = element as HTMLCanvasElement;
        const y = up === undefined ? 20 : canvas.height - up;
        const { data } = canvas.getContext('2d')!.getImageData(0, y, 1280, 1);
        return [...Array(1280).keys()].filter((x) => data[x * 4] === 0xc2 && data[x * 4 + 1] === 0x41);
      }, fromBottom);
    const onAxis = () => marked('.chart canvas');
    const inOverview = () => marked('.minimap', 2);
    expect(await onAxis()).toEqual([]);
    expect(await inOverview()).toEqual([]);
    await find(page, 'parse');
    await expect.poll(onAxis).toEqual([76, 128, 268]);
    await expect.poll(inOverview).toEqual([76, 128, 268]);
    await page.locator('.chart canvas').focus();
    await press(page, '+', 'd');
    await expect.poll(onAxis).not.toEqual([76, 128, 268]);
    expect(await inOverview()).toEqual([76, 128, 268]);
  });
});

describe('A span', () => {
  test('is measured by dragging with Shift, and the view stays', async () => {
    const page = await open();
    await measure(page, 100, 450);
    await expect.poll(() => page.locator('.span-length').innerText()).toBe('350 ms 100 ms to 450 ms');
    expect(await rangeOf(page)).toBe('0 to 1 s');
    await expect
      .poll(() => cells(page, 'What lies in the span'))
      .toEqual([
        ['worker', '350 ms', '350 ms', '1'],
        ['parse', '110 ms', '110 ms', '2'],
        ['main loop', '100 ms', '350 ms', '1'],
        ['load', '90 ms', '200 ms', '1'],
        ['draw', '50 ms', '50 ms', '1'],
      ]);
    await press(page, 'z');
    await expect.poll(() => rangeOf(page)).toBe('100 ms to 450 ms');
    await press(page, 'Escape', 'Escape');
    expect(await page.locator('.list').count()).toBe(0);
  });
});

describe('Back and forward', () => {
  test('go through zooms and selections, with keys and the mouse', async () => {
    const page = await open();
    await page.mouse.dblclick(...(await place(page, 450, 0, 1)));
    await expect.poll(() => rangeOf(page)).toBe('390 ms to 510 ms');
    await find(page, 'worker');
    await press(page, 'Enter', 'Escape');
    await expect.poll(() => title(page)).toBe('worker');
    await press(page, '2');
    await press(page, 'Backspace');
    await expect.poll(() => isShown(page, 'Timeline')).toBe('true');
    await press(page, 'Alt+ArrowLeft');
    await expect.poll(() => title(page)).toBe('draw');
    await page.getByRole('button', { name: 'Forward' }).click();
    await expect.poll(() => title(page)).toBe('worker');
    await page.evaluate(() =>
      document.body.dispatchEvent(new MouseEvent('mouseup', { button: 3, bubbles: true })),
    );
    await expect.poll(() => title(page)).toBe('draw');
    await page.evaluate(() =>
      document.body.dispatchEvent(new MouseEvent('mouseup', { button: 4, bubbles: true })),
    );
    await expect.poll(() => title(page)).toBe('worker');
    expect(page.url()).toMatch(/viewer\.html$/);
  });

  const delayTimers = (page: Page) =>
    page.evaluate(() => {
      const timer = window.setTimeout;
      window.setTimeout = ((action: () => void) => timer(action, 60_000)) as typeof window.setTimeout;
    });

  test('know each selection, however late timers come', async () => {
    const page = await open();
    await delayTimers(page);
    await page.mouse.click(...(await place(page, 450, 0, 1)));
    await expect.poll(() => title(page)).toBe('draw');
    await page.mouse.click(...(await place(page, 300, 1, 0)));
    await expect.poll(() => title(page)).toBe('worker');
    await press(page, 'Alt+ArrowLeft');
    await expect.poll(() => title(page)).toBe('draw');
  });

  test('know the movement before a selection, however late timers come', async () => {
    const page = await open();
    await delayTimers(page);
    await page.locator('.chart canvas').focus();
    await press(page, '+', '+');
    const zoomed = '277.778 ms to 722.222 ms';
    await expect.poll(() => rangeOf(page)).toBe(zoomed);
    await page.mouse.click(...(await place(page, 450, 0, 1)));
    await expect.poll(() => title(page)).toBe('draw');
    await press(page, 'Alt+ArrowLeft');
    await expect.poll(() => page.locator('.details h2').count()).toBe(0);
    await painted(page);
    expect(await rangeOf(page)).toBe(zoomed);
  });

  test('keep what lies ahead where a selection was scrolled into view', async () => {
    const page = await viewer.open({ files: { 'profiler.js': manyThreads } });
    await find(page, 'of 39');
    await press(page, 'Enter', 'Escape');
    await expect.poll(() => title(page)).toBe('of 39');
    await selectionFrame(page);
    await press(page, '2');
    await expect.poll(() => isShown(page, 'Flame graph')).toBe('true');
    await press(page, 'Alt+ArrowLeft');
    await expect.poll(() => isShown(page, 'Timeline')).toBe('true');
    await selectionFrame(page);
    await press(page, 'Alt+ArrowRight');
    await expect.poll(() => isShown(page, 'Flame graph')).toBe('true');
  });

  test('come to a place whose selection was moved out of view', async () => {
    const page = await open();
    await page.mouse.click(...(await place(page, 450, 0, 1)));
    await expect.poll(() => title(page)).toBe('draw');
    await page.locator('.chart canvas').focus();
    await press(page, '+', '+', '+', '+', ...Array<string>(30).fill('a'));
    const moved = '0 to 197.531 ms';
    await expect.poll(() => rangeOf(page)).toBe(moved);
    await page.mouse.click(...(await place(page, 500, 0, 1)));
    await expect.poll(() => title(page)).toBe('load');
    await press(page, 'Alt+ArrowLeft');
    await expect.poll(() => title(page)).toBe('draw');
    await selectionFrame(page);
    expect(await rangeOf(page)).toBe(moved);
    await press(page, 'Alt+ArrowRight');
    await expect.poll(() => title(page)).toBe('load');
  });
});

describe('Lanes', () => {
  test('are folded by a click on the title and from the menu, pinned, moved and hidden', async () => {
    const page = await open();
    const titleOf = async (lane: number): Promise<[number, number]> => {
      const [x, y] = await place(page, 20, lane, 0);
      return [x, y - 18];
    };
    await page.mouse.click(...(await titleOf(0)));
    await page.mouse.click(
      (await place(page, 300, 0, 0))[0],
      (await place(page, 300, 0, 0))[1] + 22 + 18 + 6,
    );
    await expect.poll(() => title(page)).toBe('worker');
    await press(page, 'Escape');
    await page.mouse.click(...(await titleOf(0)));
    await page.mouse.click(...(await titleOf(1)), { button: 'right' });
    await page.getByRole('menuitem', { name: 'Move up' }).click();
    await page.mouse.click(...(await place(page, 300, 0, 0)));
    await expect.poll(() => title(page)).toBe('worker');
    await press(page, 't');
    const order = () =>
      page
        .locator('dialog tbody td:nth-child(2) input')
        .evaluateAll((inputs) => inputs.map((input) => (input as HTMLInputElement).placeholder));
    expect(await order()).toEqual(['Thread 8', 'Thread 16']);
    await page.getByRole('button', { name: 'Pin Thread 16' }).click();
    await expect.poll(order).toEqual(['Thread 16', 'Thread 8']);
    await press(page, 'Escape', 'Escape');
    await page.mouse.click(...(await titleOf(0)), { button: 'right' });
    await page.getByRole('menuitem', { name: 'Hide' }).click();
    await page.mouse.click(...(await place(page, 300, 0, 0)));
    await expect.poll(() => title(page)).toBe('worker');
  });

  test('that are pinned stay while the others are scrolled', async () => {
    const page = await viewer.open({ files: { 'profiler.js': manyThreads } });
    await press(page, 't');
    await page.getByRole('button', { name: 'Pin Thread 39' }).click();
    await press(page, 'Escape');
    for (let i = 0; i < 10; ++i) await press(page, 's');
    await page.mouse.click(...(await place(page, 500, 0, 0)));
    await expect.poll(() => title(page)).toBe('of 39');
  });

  test('keep the names that the user gave to threads of a record', async () => {
    const page = await open();
    await press(page, 't');
    await page.getByLabel('Name of Thread 8').fill('Loader');
    await press(page, 'Escape');
    await page.reload();
    await page.locator('.status').waitFor();
    await page.mouse.click(...(await place(page, 300, 1, 0)));
    await expect.poll(() => details(page)).toContain('on Loader');
    writeFileSync(join(viewer.opened.folder, 'profiler.js'), recordText([{ id: 8, blocks: [] }, ...threads]));
    await page.reload();
    await page.locator('.status').waitFor();
    await press(page, 't');
    expect(await page.getByLabel('Name of Thread 8').first().inputValue()).toBe('');
  });
});

describe('The call tree', () => {
  const lines = async (page: Page) =>
    (await cells(page, 'Call tree')).map((row) => row.map((cell) => cell.replace(/[▸▾]/g, '')).slice(0, 4));

  test('is opened level by level from the top, and from the bottom', async () => {
    const page = await open();
    await press(page, '5');
    await expect
      .poll(() => lines(page))
      .toEqual([
        ['main loop', '1 s', '54.1 %', '600 ms'],
        ['worker', '850 ms', '45.9 %', '849 ms'],
      ]);
    await page.locator('.table-row').first().click();
    await page.getByRole('grid').focus();
    await press(page, 'ArrowRight', 'ArrowDown', 'ArrowRight');
    await expect
      .poll(async () => (await lines(page)).map(([name]) => name))
      .toEqual(['main loop', 'load', 'parse', 'draw', 'worker']);
    await press(page, 'ArrowLeft');
    await expect.poll(async () => (await lines(page)).length).toBe(4);
    await page.getByRole('tab', { name: 'From the bottom' }).click();
    await page.locator('.table-row', { hasText: 'parse' }).getByRole('button').click();
    await expect
      .poll(async () => (await lines(page)).map(([name]) => name))
      .toEqual(['worker', 'main loop', 'load', 'parse', 'load', 'worker', 'draw']);
  });
});

describe('A comparison', () => {
  test('has medians, timelines above each other, a difference and both distributions', async () => {
    const page = await open();
    writeFileSync(
      join(viewer.opened.folder, 'second.js'),
      record.replace('{b: 400, e: 500}', '{b: 400, e: 600}'),
    );
    await press(page, '4');
    await dropFile(page, join(viewer.opened.folder, 'second.js'));
    await page.getByLabel('Figures').selectOption('averages');
    const draw = page.locator('.table-row', { hasText: 'draw' });
    await draw.click();
    expect((await cells(page, 'Comparison of two records')).find(([name]) => name!.includes('draw'))).toEqual(
      [
        'main loop › draw',
        ...['100 ms', '200 ms', '+100 ms', '× 2'],
        ...['100 ms', '200 ms', '+100 ms', '× 2'],
        ...['100 ms', '200 ms', '+100 ms', '× 2'],
      ],
    );
    expect(await page.locator('.histogram figcaption').allInnerTexts()).toEqual([
      '1 1 duration; point at the bars to divide them',
      '2 1 duration; point at the bars to divide them',
    ]);
    await page.getByRole('tab', { name: 'Timelines' }).click();
    expect(await page.locator('.chart canvas').count()).toBe(2);
    const second = (await page.locator('.chart canvas').nth(1).boundingBox())!;
    await page.mouse.move(second.x + second.width * 0.55, second.y + 22 + 22 + 18 + 9);
    await expect.poll(() => page.locator('.tip').innerText()).toMatch(/^draw\n200 ms/);
    await page.getByRole('tab', { name: 'Difference' }).click();
    const chart = (await page.locator('.chart canvas').boundingBox())!;
    await page.mouse.move(chart.x + 10, chart.y + 22 + 22 + 9);
    await expect
      .poll(() => page.locator('.tip').innerText())
      .toMatch(/^main loop\n1 s\n1: 1 s, 1 times\n2: 1 s/);
  });

  /** The second record has a longer "draw" and one thread less. */
  const openBoth = async (comparison: string) => {
    const page = await open();
    const path = join(viewer.opened.folder, 'second.js');
    writeFileSync(path, recordText(threads.slice(0, 1)).replace('{b: 400, e: 500}', '{b: 400, e: 600}'));
    await press(page, '4');
    await dropFile(page, path);
    await page.getByRole('tab', { name: comparison }).click();
    return page;
  };
  const figures = (page: Page) => page.locator('.interval').innerText();

  test('has a difference that keys walk through, with the figures of both', async () => {
    const page = await openBoth('Difference');
    await press(page, 'Shift+ArrowDown');
    await expect.poll(() => title(page)).toBe('main loop');
    expect(await figures(page)).toBe('1: 1 s, 1 times, 2: 1 s, 1 times, 0 × 1, at the top');
    await press(page, 'Shift+ArrowRight');
    await expect.poll(() => title(page)).toBe('worker');
    expect(await figures(page)).toBe('1: 850 ms, 1 times, only in 1, -850 ms, at the top');
    await press(page, 'Shift+ArrowLeft', 'Shift+ArrowDown', 'Shift+ArrowRight');
    await expect.poll(() => title(page)).toBe('draw');
    expect(await figures(page)).toBe('1: 100 ms, 1 times, 2: 200 ms, 1 times, +100 ms × 2, in main loop');
    const before = (await selectionFrame(page))!;
    await press(page, 'f');
    await expect
      .poll(async () => (await selectionFrame(page))!.right - (await selectionFrame(page))!.left)
      .toBeGreaterThan(2 * (before.right - before.left));
    // A tree that is made anew has no selection of the one before.
    await press(page, 'r');
    await expect.poll(() => page.locator('.details').count()).toBe(0);
  });

  test('has two timelines that keys walk through, the one with the focus', async () => {
    const page = await openBoth('Timelines');
    await press(page, 'Shift+ArrowDown', 'Shift+ArrowDown', 'Shift+ArrowRight');
    await expect.poll(() => title(page)).toBe('draw');
    expect(await figures(page)).toMatch(/^100 ms .* on Thread 16, in main loop$/);
    await page.getByLabel('Timeline of the second record').focus();
    await press(page, 'Shift+ArrowDown', 'Shift+ArrowDown', 'Shift+ArrowRight');
    await expect.poll(() => title(page)).toBe('draw');
    expect(await figures(page)).toMatch(/^200 ms .* on Thread 16, in main loop$/);
    await press(page, 'f');
    await expect
      .poll(async () => {
        const frame = (await selectionFrame(page, '.chart:last-child canvas'))!;
        return frame && frame.right - frame.left;
      })
      .toBeGreaterThan(640);
    await press(page, 'Escape');
    await expect.poll(() => page.locator('.details').count()).toBe(0);
    await page.getByLabel('Timeline of the first record').focus();
    await press(page, 'Shift+ArrowDown');
    await expect.poll(() => title(page)).toBe('main loop');
  });
});

describe('What is seen is kept', () => {
  test('in a file of the view with its notes', async () => {
    const page = await open();
    await page.mouse.click(...(await place(page, 150, 0, 2)));
    await page.getByLabel('Note').fill('why so long?');
    await press(page, 'Enter', 'Escape', 'f');
    await page.getByRole('button', { name: 'Export' }).click();
    const { data } = await download(page, () =>
      page.getByRole('menuitem', { name: 'View with notes' }).click(),
    );
    const path = join(viewer.opened.folder, 'kept.json');
    writeFileSync(path, data);
    await page.evaluate(() => localStorage.clear());
    await page.reload();
    await page.locator('.status').waitFor();
    await dropFile(page, path);
    await expect.poll(() => title(page)).toBe('parse');
    expect(await rangeOf(page)).toBe('90 ms to 210 ms');
    expect(await page.getByLabel('Note').inputValue()).toBe('why so long?');
    await page.getByRole('button', { name: '1 note' }).click();
    expect(await page.locator('.notes').innerText()).toContain('why so long?');
  });

  test('in a link', async () => {
    const page = await open();
    await page.mouse.dblclick(...(await place(page, 450, 0, 1)));
    await page.getByRole('button', { name: 'Export' }).click();
    await page.getByRole('menuitem', { name: 'Link to the view' }).click();
    const link = await page.getByRole('textbox', { name: 'Link' }).inputValue();
    expect(link).toContain('viewer.html#view=');
    await page.goto('about:blank');
    await page.goto(link);
    await page.locator('.details').waitFor();
    expect(await title(page)).toBe('draw');
    expect(await rangeOf(page)).toBe('390 ms to 510 ms');
  });

  test('by reading the file again', async () => {
    const page = await open();
    await page.mouse.dblclick(...(await place(page, 150, 0, 2)));
    await expect.poll(() => rangeOf(page)).toBe('90 ms to 210 ms');
    writeFileSync(
      join(viewer.opened.folder, 'profiler.js'),
      record.replace('{b: 210, e: 220}', '{b: 210, e: 220},{b: 230, e: 231}'),
    );
    await press(page, 'u');
    await expect.poll(() => status(page)).toMatch(/^8 intervals/);
    expect(await rangeOf(page)).toBe('90 ms to 210 ms');
    expect(await title(page)).toBe('parse');
  });

  test.skipIf(inFirefox)('by reading a dropped file again', async () => {
    const page = await open();
    const path = join(viewer.opened.folder, 'dropped.js');
    writeFileSync(path, record);
    await dropFile(page, path);
    await expect.poll(() => page.locator('.title').innerText()).toBe('dropped.js');
    await page.mouse.dblclick(...(await place(page, 150, 0, 2)));
    writeFileSync(path, record.replace('{b: 210, e: 220}', '{b: 210, e: 220},{b: 230, e: 231}'));
    await press(page, 'u');
    await expect.poll(() => status(page)).toMatch(/^8 intervals/);
    expect(await title(page)).toBe('parse');
  });

  test('as a picture, of points and of lines', async () => {
    const page = await open();
    await page.getByRole('button', { name: 'Export' }).click();
    const png = await download(page, () => page.getByRole('menuitem', { name: 'PNG' }).click());
    expect([...png.data.subarray(1, 4)].map((byte) => String.fromCharCode(byte)).join('')).toBe('PNG');
    await page.getByRole('button', { name: 'Export' }).click();
    const svg = await download(page, () => page.getByRole('menuitem', { name: 'SVG' }).click());
    const texts = await page.evaluate((text) => {
      const parsed = new DOMParser().parseFromString(text, 'image/svg+xml');
      return [...parsed.querySelectorAll('text, parsererror')].map((element) => element.textContent);
    }, svg.data.toString('utf8'));
    expect(texts).toEqual(expect.arrayContaining(['main loop', 'worker', '▾ Thread 16']));
  });

  test('as text of a row', async () => {
    const page = await open();
    await press(page, '3');
    await page.locator('.table-row', { hasText: 'draw' }).click();
    await page.getByRole('grid').focus();
    await page.evaluate(() =>
      document.addEventListener('copy', (event) =>
        Object.assign(window, { copied: event.clipboardData!.getData('text/plain') }),
      ),
    );
    await press(page, 'Control+c');
    await expect
      .poll(() => page.evaluate(() => (window as { copied?: string }).copied))
      .toBe('draw\t1\t100 ms\t100 ms\t100 ms\t100 ms\t100 ms\t100 ms\t0');
  });

  test('of other programs, too', async () => {
    const page = await open();
    const path = join(viewer.opened.folder, 'trace.json');
    writeFileSync(
      path,
      JSON.stringify({
        traceEvents: [{ ph: 'X', pid: 1, tid: 7, ts: 1000, dur: 2000, name: 'from elsewhere' }],
      }),
    );
    await dropFile(page, path);
    await expect.poll(() => status(page)).toMatch(/^1 intervals, 1 thread\n/);
  });

  test('of speedscope: what it was made from is seen again', async () => {
    const page = await open();
    await page.getByRole('button', { name: 'Export' }).click();
    const { data } = await download(page, () => page.getByRole('menuitem', { name: /speedscope/i }).click());
    const path = join(viewer.opened.folder, 'scope.json');
    writeFileSync(path, data);
    await dropFile(page, path);
    await expect.poll(() => status(page)).toMatch(/^7 intervals, 2 threads\n[^]*exact/);
    await page.mouse.click(...(await place(page, 150, 0, 2)));
    await expect.poll(() => title(page)).toBe('parse');
    expect(await page.locator('.interval').innerText()).toMatch(
      /^100 ms .* from 100 ms on Thread 16, in main loop › load$/,
    );
    writeFileSync(path, data.subarray(0, data.length / 2));
    await dropFile(page, path);
    await expect
      .poll(() => page.getByRole('alert').innerText())
      .toContain('scope.json cannot be shown. The file begins as JSON does, but is damaged or cut.');
    expect(await title(page)).toBe('parse');
  });
});
