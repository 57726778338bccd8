import { createServer, type Server } from 'node:http';
import { writeFileSync } from 'node:fs';
import type { AddressInfo } from 'node:net';
import { join } from 'node:path';
import type { Browser, Page } from 'playwright-core';
import { afterAll, afterEach, beforeAll, describe, expect, test } from 'vitest';
import {
  chooseFile,
  download,
  dropFile,
  inFirefox,
  launchBrowser,
  openViewer,
  type Opened,
  type OpenOptions,
} from '../support/browser';
import { deepRecord, recordText, type ThreadText } from '../support/make_record';
import { spansOfChrome, spansOfSpeedscope } from '../support/validate';
import { isShown } from '../support/viewer';

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
          {
            name: 'draw',
            time: [
              [400, 500],
              [500, 520],
              [700, 701],
            ],
          },
          { name: 'walk', time: [[800, 900]], blocks: [{ name: 'walk', time: [[810, 890]] }] },
        ],
      },
    ],
  },
  {
    id: 8,
    blocks: [
      { name: 'worker', time: [[50, 900]], blocks: [{ name: 'parse', time: [[60, 61]] }] },
      { name: 'left open', time: [[950, 0]] },
    ],
  },
  { id: 12 },
];
const record = recordText(threads);
const slower = recordText([
  {
    id: 20,
    blocks: [
      {
        name: 'main loop',
        time: [[0, 2000]],
        blocks: [
          { name: 'load', time: [[0, 600]] },
          { name: 'new', time: [[700, 800]] },
        ],
      },
    ],
  },
]);

let browser: Browser;
let opened: Opened | undefined;
beforeAll(async () => {
  browser = await launchBrowser();
});
afterEach(async () => {
  const { requests, complaints } = opened ?? { requests: [], complaints: [] };
  await opened?.close();
  opened = undefined;
  expect(requests.filter((address) => !/^(file|blob|data):/.test(address))).toEqual([]);
  expect(complaints).toEqual([]);
});
afterAll(() => browser.close());

async function open(options: OpenOptions = {}): Promise<Page> {
  opened = await openViewer(browser, options);
  return opened.page;
}
const openRecord = (options: OpenOptions = {}) => open({ files: { 'profiler.js': record }, ...options });

const status = (page: Page) => page.locator('.status').innerText();
const range = async (page: Page) => /[\d.]+(?: \S+)? to [^:]+/.exec(await status(page))?.[0];
const details = (page: Page) => page.locator('.details').innerText();
const names = async (page: Page) => {
  await page.locator('.table-row').first().waitFor();
  return page.locator('.table-row > span:first-child').allTextContents();
};

/** The middle of the timeline's row, `depth` from the lane's top, at a time of the whole second. */
async function place(page: Page, time: number, lane: number, depth: number): Promise<[number, number]> {
  const box = (await page.locator('.chart canvas').boundingBox())!;
  const lanesAbove = [0, 22 + 3 * 18 + 6, 2 * 28 + 5 * 18][lane]!;
  return [box.x + (box.width * time) / 1000, box.y + 22 + lanesAbove + 22 + depth * 18 + 9];
}

describe('A record is opened', () => {
  test('by a script beside the page, without being asked', async () => {
    const page = await openRecord();
    expect(await status(page)).toMatch(/^12 intervals, 3 threads/);
    expect(await status(page)).toContain('opened as a script');
    expect(await page.locator('.title').innerText()).toBe('profiler.js');
  });

  test('by a script whose name the address tells', async () => {
    const page = await open({
      files: { 'profiler.js': slower, 'my first.js': record },
      query: '?record=my%20first.js',
    });
    expect(await page.locator('.title').innerText()).toBe('my first.js');
    expect(await status(page)).toMatch(/^12 intervals/);
  });

  test('never by a script outside the folder', async () => {
    for (const name of ['../profiler.js', '/tmp/x.js', 'https://127.0.0.1/x.js', '..%5Cx.js']) {
      const page = await open({
        files: { 'profiler.js': record },
        query: `?record=${encodeURIComponent(name)}`,
      });
      expect(await page.locator('.title').innerText()).toBe('profiler.js');
      await opened!.close();
      opened = undefined;
    }
  });

  test('by dropping it', async () => {
    const page = await open({ files: { 'dropped.js': record } });
    await page.locator('.welcome').waitFor();
    opened!.complaints.length = 0; // that there is no profiler.js
    await dropFile(page, join(opened!.folder, 'dropped.js'));
    await page.locator('.status').waitFor();
    expect(await status(page)).toMatch(/^12 intervals, 3 threads/);
    expect(await status(page)).not.toContain('script');
  });

  test('by the file button, and by Ctrl+O', async () => {
    const page = await openRecord({ files: { 'profiler.js': record, 'other.js': slower } });
    await chooseFile(page, () => page.click('#open'), join(opened!.folder, 'other.js'));
    await expect.poll(() => status(page)).toMatch(/^3 intervals, 1 thread\n/);
    await chooseFile(page, () => page.keyboard.press('Control+o'), join(opened!.folder, 'profiler.js'));
    await expect.poll(() => status(page)).toMatch(/^12 intervals/);
  });
});

describe('The timeline', () => {
  test('shows a block and its figures under the pointer and after a click', async () => {
    const page = await openRecord();
    await page.mouse.move(...(await place(page, 150, 0, 2)));
    await expect
      .poll(() => page.locator('.tip').innerText())
      .toBe('parse\n100 ms\nself 100 ms\nbegins at 100 ms');
    await page.mouse.click(...(await place(page, 150, 0, 2)));
    await expect.poll(() => details(page)).toMatch(/^parse\n/);
    expect(await details(page)).toContain(
      '100 ms ± 1 µs, self 100 ms, from 100 ms on Thread 16, in main loop › load',
    );
    expect(await details(page)).toMatch(
      /Count\n3\nTotal\n111 ms\nSelf\n111 ms\nMean\n37 ms\nMedian\n10 ms\nMin\n1 ms\nMax\n100 ms/,
    );
  });

  test('shows what was never closed to the end of the record', async () => {
    const page = await openRecord();
    await page.mouse.click(...(await place(page, 980, 1, 0)));
    await expect.poll(() => details(page)).toContain('50 ms so far, never closed');
    expect(await details(page)).toMatch(/Count\n1 \(1 never closed\)\nTotal\n50 ms\nSelf\n50 ms\nMean\n–/);
  });

  /** Colours on the row at a place, over a number of pixels. */
  const coloursAt = (page: Page, [x, y]: [number, number], width: number) =>
    page.locator('.chart canvas').evaluate(
      (element, { x, y, width }) => {
        const canvas = element as HTMLCanvasElement;
        const { left, top } = canvas.getBoundingClientRect();
        const { data } = canvas.getContext('2d')!.getImageData(x - left, y - top, width, 1);
        const colours: string[] = [];
        for (let at = 0; at < data.length; at += 4) colours.push(data.slice(at, at + 3).join(' '));
        return colours;
      },
      { x, y, width },
    );

  test('hatches what was never closed, and nothing else', async () => {
    const page = await openRecord();
    const row = ([x, y]: [number, number]): [number, number] => [x, y + 7]; // below the name
    expect(new Set(await coloursAt(page, row(await place(page, 955, 1, 0)), 40)).size).toBeGreaterThan(1);
    expect(new Set(await coloursAt(page, row(await place(page, 500, 1, 0)), 40)).size).toBe(1);
  });

  test('shows what took no time one pixel wide, and says so', async () => {
    const text = recordText([
      {
        id: 4,
        blocks: [
          { name: 'long', time: [[0, 100]] },
          { name: 'none', time: [[450, 450]] },
          { name: 'end', time: [[900, 1000]] },
        ],
      },
    ]);
    const page = await open({ files: { 'profiler.js': text } });
    const [x, y] = await place(page, 450, 0, 0);
    const colours = await coloursAt(page, [x - 10, y], 20);
    const [ground] = await coloursAt(page, [x - 60, y], 1);
    expect(colours.filter((colour) => colour !== ground).length).toBe(1);
    await page.mouse.click(x, y);
    await expect.poll(() => details(page)).toMatch(/^none\n/);
    await page.mouse.move(x, y);
    await expect.poll(() => status(page)).toContain('no time passed between its stamps');
    await page.keyboard.press('3');
    expect(await page.locator('.table-row', { hasText: 'none' }).innerText()).toMatch(/^none\s+1\s+0\s/);
  });

  test('does not change its picture of narrow blocks while it is moved', async () => {
    const time: [number, number][] = Array.from({ length: 20000 }, (_, i) => [i / 20, i / 20 + 0.03]);
    const blocks = ['a', 'b', 'c'].map((name, n) => ({
      name,
      time: time.filter((_, i) => ((i * i) % 7) % 3 === n),
    }));
    const page = await open({
      files: { 'profiler.js': recordText([{ id: 4, blocks }]) },
      viewport: { width: 1275, height: 800 },
    });
    await page.keyboard.press('+');
    await page.keyboard.press('+');
    const [x, y] = await place(page, 500, 0, 0);
    const before = await coloursAt(page, [x - 300, y], 400);
    expect(new Set(before).size).toBe(3);
    await page.keyboard.press('d'); // by 127.5 pixels
    const after = await coloursAt(page, [x - 300 - 128, y], 401);
    expect([after.slice(0, -1), after.slice(1)]).toContainEqual(before);
  });

  test('puts the thread that began first on top and marks it', async () => {
    const page = await openRecord();
    await page.keyboard.press('t');
    const rows = page.locator('dialog tbody tr');
    expect(
      await rows
        .locator('td:nth-child(2) input')
        .evaluateAll((inputs) => inputs.map((input) => (input as HTMLInputElement).placeholder)),
    ).toEqual(['Thread 16', 'Thread 8', 'Thread 12']);
    expect(await rows.first().innerText()).toContain('probably the main thread');
  });

  test('zooms at the pointer with Ctrl and the wheel', async () => {
    const page = await openRecord();
    await page.mouse.move(...(await place(page, 500, 0, 0)));
    await page.keyboard.down('Control');
    await page.mouse.wheel(0, -231); // e^(231 * 0.003) = 2
    await page.keyboard.up('Control');
    await expect.poll(() => range(page)).toBe('249.963 ms to 750.037 ms');
  });

  test('moves with the mouse, not past its ends', async () => {
    const page = await openRecord();
    await page.keyboard.press('+');
    await page.keyboard.press('+');
    const before = await range(page);
    const [x, y] = await place(page, 500, 0, 0);
    await page.mouse.move(x, y);
    await page.mouse.down();
    await page.mouse.move(x - 128, y, { steps: 4 });
    await page.mouse.up();
    expect(before).toBe('277.778 ms to 722.222 ms');
    await expect.poll(() => range(page)).toBe('322.222 ms to 766.667 ms');
    for (let i = 0; i < 12; ++i) await page.keyboard.press('d');
    await expect.poll(() => range(page)).toBe('555.556 ms to 1 s');
  });

  test('shows a range chosen in the overview', async () => {
    const page = await openRecord();
    const overview = (await page.locator('.minimap').boundingBox())!;
    await page.mouse.move(overview.width * 0.5, overview.y + 20);
    await page.mouse.down();
    await page.mouse.move(overview.width * 0.75, overview.y + 20, { steps: 3 });
    await page.mouse.up();
    await expect.poll(() => range(page)).toBe('500 ms to 750 ms');
    await page.mouse.move(overview.width * 0.6, overview.y + 20);
    await page.mouse.down();
    await page.mouse.move(overview.width * 0.5, overview.y + 20, { steps: 3 });
    await page.mouse.up();
    await expect.poll(() => range(page)).toBe('400 ms to 650 ms');
    await page.mouse.dblclick(overview.width * 0.9, overview.y + 20);
    await expect.poll(() => range(page)).toBe('0 to 1 s');
  });

  test('fits a block by a double click', async () => {
    const page = await openRecord();
    await page.mouse.dblclick(...(await place(page, 450, 0, 1)));
    await expect.poll(() => range(page)).toBe('390 ms to 510 ms');
  });

  test('goes to the hits of a search and back', async () => {
    const page = await openRecord();
    await page.keyboard.press('Control+f');
    await page.keyboard.type('PARSE');
    const hits = page.locator('.hits');
    await expect.poll(() => hits.innerText()).toBe('3');
    await page.keyboard.press('Enter');
    await expect.poll(() => hits.innerText()).toBe('1 of 3');
    expect(await details(page)).toContain('from 60 ms on Thread 8');
    await page.keyboard.press('Enter');
    await page.keyboard.press('Enter');
    await expect.poll(() => hits.innerText()).toBe('3 of 3');
    expect(await details(page)).toContain('from 210 ms on Thread 16');
    await page.keyboard.press('Shift+Enter');
    await expect.poll(() => hits.innerText()).toBe('2 of 3');
    expect(await details(page)).toContain('from 100 ms on Thread 16');
  });

  test('hides and renames threads', async () => {
    const page = await openRecord();
    await page.getByRole('button', { name: 'Threads' }).click();
    await page.getByLabel('Show Thread 16').uncheck();
    await page.getByLabel('Name of Thread 8').fill('The worker');
    await page.keyboard.press('Escape');
    await page.mouse.click(...(await place(page, 300, 0, 0)));
    await expect.poll(() => details(page)).toContain('from 50 ms on The worker');
    await page.evaluate(() => localStorage.clear());
  });

  test('tells the resolution where it looks', async () => {
    const page = await openRecord();
    expect(await status(page)).toContain('resolution at 1 s: 10 µs');
    await page.mouse.move(...(await place(page, 150, 0, 2)));
    await expect.poll(() => status(page)).toContain('resolution at 100 ms: 1 µs');
  });
});

describe('The other views', () => {
  test('show the merged flame graph, the heaviest to the left', async () => {
    const page = await openRecord();
    await page.getByRole('tab', { name: 'Flame graph' }).click();
    const box = (await page.locator('.chart canvas').boundingBox())!;
    const at = async (x: number, depth: number) => {
      await page.mouse.move(box.x + x, box.y + 22 + 22 + depth * 18 + 9);
      return page.locator('.tip').innerText();
    };
    // main loop 1000, worker 850, left open 50
    await expect.poll(() => at(10, 0)).toMatch(/^main loop\n1 s\n52\.6 % of all/);
    await expect.poll(() => at(10, 1)).toMatch(/^load\n300 ms\n15\.8 % of all, self 190 ms\nonce/);
    await expect.poll(() => at(box.width * 0.9, 0)).toMatch(/^worker\n850 ms/);
  });

  test('fold recursion', async () => {
    const page = await openRecord();
    await page.keyboard.press('3');
    const walk = page.locator('.table-row', { hasText: 'walk' });
    expect(await walk.innerText()).toMatch(/^walk\s+2\s+180 ms\s+100 ms/);
    await page.keyboard.press('r');
    await expect.poll(() => walk.innerText()).toMatch(/^walk\s+1\s+100 ms\s+100 ms/);
  });

  test('show statistics that are sorted, filtered and limited to a range', async () => {
    const page = await openRecord();
    await page.keyboard.press('3');
    expect(await names(page)).toEqual(['worker', 'main loop', 'load', 'draw', 'parse', 'walk', 'left open']);
    await page.getByRole('columnheader', { name: 'Count' }).click();
    expect((await names(page)).slice(0, 2).sort()).toEqual(['draw', 'parse']);
    await page.getByRole('columnheader', { name: 'Name' }).click();
    expect((await names(page))[0]).toBe('draw');
    await page.keyboard.press('Control+f');
    await page.keyboard.type('a');
    expect(await names(page)).toEqual(['draw', 'load', 'main loop', 'parse', 'walk']);
    await page.keyboard.press('Escape');
    await page.keyboard.press('1');
    await page.mouse.dblclick(...(await place(page, 450, 0, 1)));
    await page.getByRole('checkbox', { name: 'In view' }).check();
    await page.keyboard.press('3');
    await expect.poll(() => names(page)).toEqual(['worker', 'draw', 'main loop']);
    const row = page.locator('.table-row', { hasText: 'draw' });
    expect(await row.innerText()).toMatch(/^draw\s+2\s+110 ms/);
  });

  test('show callers and callees of a name', async () => {
    const page = await openRecord();
    await page.keyboard.press('3');
    await page.locator('.table-row', { hasText: 'parse' }).click();
    const callers = page.getByRole('region', { name: 'Callers' });
    expect((await callers.innerText()).split(/\s*\n\s*/)).toEqual([
      'Callers',
      'load',
      '110 ms',
      '99.1 %',
      '2',
      'worker',
      '1 ms',
      '0.9 %',
      '1',
    ]);
    await callers.getByRole('button', { name: 'load' }).click();
    const callees = page.getByRole('region', { name: 'Callees' });
    expect((await callees.innerText()).split(/\s*\n\s*/)).toEqual([
      'Callees',
      'parse',
      '110 ms',
      '100.0 %',
      '2',
    ]);
  });

  test('show a histogram that the pointer divides', async () => {
    const time: [number, number][] = Array.from({ length: 100 }, (_, i) => [1000 * i, 1000 * i + 100 + i]);
    const page = await open({
      files: { 'profiler.js': recordText([{ id: 4, blocks: [{ name: 'a', time }] }]) },
    });
    await page.keyboard.press('3');
    await page.locator('.table-row').click();
    const caption = page.locator('.histogram figcaption');
    expect(await caption.innerText()).toContain('100 durations');
    const plot = (await page.locator('.histogram .u-over').boundingBox())!;
    await page.mouse.move(plot.x + plot.width * 0.25, plot.y + plot.height / 2);
    await expect
      .poll(() => caption.innerText())
      .toMatch(/^125\.\d+ ms: 26 shorter \(26\.0 %\), 74 as long or longer \(74\.0 %\)$/);
  });

  test('compare two records', async () => {
    const page = await openRecord({ files: { 'profiler.js': record, 'second.js': slower } });
    await page.keyboard.press('4');
    await dropFile(page, join(opened!.folder, 'second.js'));
    const row = (path: string) =>
      page.locator('.table-row').filter({ has: page.getByTitle(path, { exact: true }) });
    await row('main loop').waitFor();
    const cells = async (path: string) =>
      (await row(path).locator('> span').allInnerTexts()).map((text) => text.replace(/\s+/g, ' '));
    expect(await cells('main loop')).toEqual([
      'main loop',
      '1',
      '1',
      '0',
      '× 1',
      '1 s',
      '2 s',
      '+1 s',
      '× 2',
      '1 s',
      '2 s',
      '+1 s',
      '× 2',
    ]);
    expect((await cells('main loop › new')).slice(0, 6)).toEqual([
      'only in 2 main loop › new',
      '–',
      '1',
      '–',
      '–',
      '–',
    ]);
    expect((await cells('worker'))[0]).toBe('only in 1 worker');
    expect(await page.locator('.worse').count()).toBeGreaterThan(0);
  });
});

describe('Exports', () => {
  async function exported(page: Page, kind: string): Promise<string> {
    await page.getByRole('button', { name: 'Export' }).click();
    const { data } = await download(page, () => page.getByRole('menuitem', { name: kind }).click());
    return data.toString('utf8');
  }
  const expected = [
    ['Thread 16', 'main loop', 0, 1000, 0],
    ['Thread 16', 'load', 0, 300, 1],
    ['Thread 16', 'parse', 100, 200, 2],
    ['Thread 16', 'parse', 210, 220, 2],
    ['Thread 16', 'draw', 400, 500, 1],
    ['Thread 16', 'draw', 500, 520, 1],
    ['Thread 16', 'draw', 700, 701, 1],
    ['Thread 16', 'walk', 800, 900, 1],
    ['Thread 16', 'walk', 810, 890, 2],
    ['Thread 8', 'worker', 50, 900, 0],
    ['Thread 8', 'parse', 60, 61, 1],
    ['Thread 8', 'left open', 950, 1000, 0],
  ];

  test('give the record back', async () => {
    const page = await openRecord();
    const rows = (spans: ReturnType<typeof spansOfChrome>) =>
      spans.map(({ thread, name, begin, end, depth }) => [thread, name, begin, end, depth]);
    expect(rows(spansOfChrome(await exported(page, 'Chrome')))).toEqual(expected);
    expect(rows(spansOfSpeedscope(await exported(page, 'speedscope')))).toEqual(expected);
    const digits = (value: number) => Number(value.toPrecision(10));
    const mean = 121 / 3;
    const deviation = Math.sqrt(((1 - mean) ** 2 + (20 - mean) ** 2 + (100 - mean) ** 2) / 3);
    const lines = (await exported(page, 'Statistics')).split('\r\n');
    expect(lines).toContain(`"draw",3,0,121,121,${digits(mean)},20,1,100,${digits(deviation)}`);
  });
});

describe('With the keyboard alone', () => {
  test('everything can be reached', async () => {
    const page = await openRecord();
    const press = async (...keys: string[]) => {
      for (const key of keys) await page.keyboard.press(key);
    };
    await press('+');
    await expect.poll(() => range(page)).toBe('166.667 ms to 833.333 ms');
    await press('a', 'ArrowRight', 'ArrowLeft');
    await expect.poll(() => range(page)).toBe('100 ms to 766.667 ms');
    await press('-', '-', '0');
    await expect.poll(() => range(page)).toBe('0 to 1 s');
    await press('n', 'n', 'Shift+ArrowDown');
    await expect.poll(() => details(page)).toMatch(/^worker\n/);
    await press('Shift+ArrowDown');
    await expect.poll(() => details(page)).toMatch(/^parse\n/);
    await press('Shift+ArrowUp', 'Shift+ArrowRight');
    await expect.poll(() => details(page)).toMatch(/^left open\n/);
    await press('f');
    await expect.poll(() => range(page)).toBe('940 ms to 1 s');
    await press('Escape');
    await expect.poll(() => page.locator('.details').count()).toBe(0);
    await press('3');
    await page.getByRole('grid').focus();
    await press('ArrowDown', 'ArrowDown', 'End', 'Home', 'ArrowDown');
    await expect.poll(() => page.locator('.table-row[aria-selected=true]').innerText()).toMatch(/^main loop/);
    await press('Enter');
    await expect.poll(() => isShown(page, 'Timeline')).toBe('true');
    await press('?');
    expect(await page.locator('dialog').innerText()).toContain('Keys');
    await press('Escape');
    await expect.poll(() => page.locator('dialog').count()).toBe(0);
  });

  test('the focus goes through all controls and is seen', async () => {
    const page = await openRecord({ alone: true });
    const seen = new Set<string>();
    while (!seen.has('the page')) {
      await page.keyboard.press('Tab');
      seen.add(
        await page.evaluate(() => {
          const element = document.activeElement!;
          if (element === document.body) return 'the page';
          return getComputedStyle(element).outlineStyle === 'none'
            ? 'unseen'
            : element.getAttribute('aria-label') || element.textContent!;
        }),
      );
    }
    for (const control of [
      'Open…',
      'Timeline',
      'Search names',
      'Threads',
      'Export',
      'Encoding of names',
      'Colours',
      '?',
    ])
      expect(seen).toContain(control);
    expect(seen).not.toContain('unseen');
  });
});

describe('Colours', () => {
  const background = (page: Page) => page.evaluate(() => getComputedStyle(document.body).backgroundColor);

  test('follow the system, and the choice in the page', async () => {
    const page = await openRecord({ colorScheme: 'dark' });
    expect(await background(page)).toBe('rgb(21, 25, 31)');
    await page.getByLabel('Colours').selectOption('light');
    expect(await background(page)).toBe('rgb(255, 255, 255)');
    await page.getByLabel('Colours').selectOption('auto');
    expect(await background(page)).toBe('rgb(21, 25, 31)');
    if (inFirefox) return; // which follows the system from its start only
    await page.emulateMedia({ colorScheme: 'light' });
    await expect.poll(() => background(page)).toBe('rgb(255, 255, 255)');
  });
});

describe('Bad input', () => {
  /** Opens it as text and gives what the page says. */
  async function say(content: string | Uint8Array): Promise<string> {
    const page = opened?.page ?? (await openRecord());
    writeFileSync(join(opened!.folder, 'bad.js'), content);
    await dropFile(page, join(opened!.folder, 'bad.js'));
    await page.locator('.refusal').waitFor();
    return (await page.locator('.refusal').innerText()).replace(/\s*×\s*$/, '');
  }

  test('is refused with a sentence, and the record before stays', async () => {
    expect(await say('')).toBe('bad.js cannot be shown. The file is empty.');
    await opened!.page.locator('.refusal .close').click();
    expect(await say('<!doctype html>\n<script>document.title = "run"</script>\n')).toBe(
      'bad.js cannot be shown. This is no profile record: it should begin with "var threads = [", but it begins with "<!doctype html>".',
    );
    expect(await status(opened!.page)).toMatch(/^12 intervals/);
    expect(await opened!.page.title()).toBe('Profile viewer');
  });

  test('of other programs is refused by its kind, and the record before stays', async () => {
    for (const [content, sentence] of [
      ['PK\x03\x04' + 'x'.repeat(100), 'This is no profile record: it is a zip archive. Unpack it first.'],
      ['{"nodes": [{"id": 1}], "timeDeltas": [1]}', "The file is a CPU profile of Chrome's debugger."],
      ['{"traceEvents": [', 'The file begins as JSON does, but is damaged or cut.'],
    ] as const) {
      expect(await say(content)).toContain(`bad.js cannot be shown. ${sentence}`);
      await opened!.page.locator('.refusal .close').click();
    }
    expect(await status(opened!.page)).toMatch(/^12 intervals/);
  });

  test('with ten thousand levels is shown in every view', async () => {
    const page = await openRecord();
    writeFileSync(join(opened!.folder, 'deep.js'), deepRecord(10_000));
    await dropFile(page, join(opened!.folder, 'deep.js'));
    await expect.poll(() => status(page)).toMatch(/^10,000 intervals, 1 thread\n/);
    await page.keyboard.press('Shift+ArrowDown');
    await expect.poll(() => page.locator('.details h2').innerText()).toBe('n');
    await page.keyboard.press('2');
    await page.locator('.chart canvas').waitFor();
    for (const view of ['3', '5']) {
      await page.keyboard.press(view);
      expect(await names(page)).toEqual([expect.stringContaining('n')]);
    }
  });

  test('whose times are lost keeps what ran inside, and says so', async () => {
    const page = await openRecord();
    const text = recordText([
      { id: 4, blocks: [{ name: 'outer', time: [[0, 10]], blocks: [{ name: 'inner', time: [[2, 4]] }] }] },
    ]);
    writeFileSync(join(opened!.folder, 'lost.js'), text.replace('{b: 0, e: 10}', '{b: 0, e: x}'));
    await dropFile(page, join(opened!.folder, 'lost.js'));
    await expect.poll(() => status(page)).toContain('1 problem in the file');
    await page.keyboard.press('Shift+ArrowDown');
    await expect.poll(() => page.locator('.details').innerText()).toMatch(/^outer\n[^]*times are lost/);
    await page.keyboard.press('Shift+ArrowDown');
    await expect.poll(() => page.locator('.details').innerText()).toMatch(/^inner\n[^]*2 ms/);
  });

  test('that was cut is shown as far as it goes, and the line is named', async () => {
    const page = await openRecord();
    writeFileSync(join(opened!.folder, 'cut.js'), record.slice(0, record.indexOf("'draw'")));
    await dropFile(page, join(opened!.folder, 'cut.js'));
    await expect.poll(() => status(page)).toMatch(/^3 intervals, 1 thread\n/);
    await page.getByRole('button', { name: /problem/ }).click();
    await expect
      .poll(() => page.locator('.problems').innerText())
      .toMatch(/^line 18 not understood and left out: "name:"\nline 18 the file ends before the record does/);
  });

  test('that is no script is refused by the script way with a hint, and read as text', async () => {
    const page = await open({ files: { 'profiler.js': record.replaceAll('draw', "it's") } });
    expect(await page.locator('.refusal').innerText()).toContain('profiler.js is no valid script');
    opened!.complaints.length = 0; // the browser's own words on it
    await dropFile(page, join(opened!.folder, 'profiler.js'));
    await expect.poll(() => status(page)).toMatch(/^12 intervals/);
    await page.keyboard.press('3');
    expect(await names(page)).toContain("it's");
  });

  test('in names is shown and never run', async () => {
    const hostile = [
      '</script><script>window.run = 1</script>',
      '<img src=x onerror="window.run = 1">',
      "'}]; window.run = 1; //",
      '"quoted"',
    ];
    const page = await open();
    opened!.complaints.length = 0;
    const text = recordText([{ id: 4, blocks: hostile.map((name, i) => ({ name, time: [[i, i + 1]] })) }]);
    writeFileSync(join(opened!.folder, 'hostile.js'), text);
    await dropFile(page, join(opened!.folder, 'hostile.js'));
    await page.locator('.status').waitFor();
    await page.keyboard.press('3');
    expect((await names(page)).sort()).toEqual([...hostile].sort());
    await page.locator('.table-row').first().click();
    expect(await page.evaluate(() => 'run' in window)).toBe(false);
  });

  test('of four code pages is read in the one that is chosen', async () => {
    const raw = ['caf\xc3\xa9', 'caf\xe9', '\xcf\xf0\xe8', '\x83\x5c'];
    const page = await open();
    opened!.complaints.length = 0;
    const text = recordText([{ id: 4, blocks: raw.map((name, i) => ({ name, time: [[i, i + 1]] })) }]);
    writeFileSync(join(opened!.folder, 'pages.js'), Buffer.from(text, 'latin1'));
    await dropFile(page, join(opened!.folder, 'pages.js'));
    await page.locator('.status').waitFor();
    await page.keyboard.press('3');
    const choice = page.getByLabel('Encoding of names');
    for (const [encoding, name] of [
      ['utf-8', 'café'],
      ['windows-1252', 'café'],
      ['windows-1251', 'При'],
      ['shift_jis', 'ソ'],
    ] as const) {
      await choice.selectOption(encoding);
      await expect.poll(() => names(page)).toContain(name);
    }
  });

  test('that holds nothing says so', async () => {
    const page = await open({ files: { 'profiler.js': recordText([]) } });
    expect(await page.locator('.empty').innerText()).toContain('The record holds no blocks');
  });

  test('by script keeps bytes of names', async () => {
    const page = await open({
      files: {
        'profiler.js': Buffer.from(
          recordText([{ id: 4, blocks: [{ name: 'caf\xe9 \x80', time: [[0, 1]] }] }]),
          'latin1',
        ),
      },
    });
    await page.keyboard.press('3');
    expect(await names(page)).toEqual(['café €']);
  });
});

describe('Nothing leaves the page', () => {
  let server: Server;
  let asked = 0;
  beforeAll(async () => {
    server = createServer((_, response) => {
      ++asked;
      response.end('x');
    });
    await new Promise<void>((resolve) => server.listen(0, '127.0.0.1', resolve));
  });
  afterAll(() => void server.close());

  test('even if a script in it tried', async () => {
    const page = await openRecord();
    const address = `http://127.0.0.1:${(server.address() as AddressInfo).port}/`;
    const tries = await page.evaluate(async (address) => {
      const outcome = (work: Promise<unknown>) =>
        work.then(
          () => 'went',
          () => 'refused',
        );
      const image = new Promise((resolve, reject) => {
        const element = new Image();
        element.onload = resolve;
        element.onerror = reject;
        element.src = address;
      });
      const fetched = outcome(fetch(address));
      // The browser queues a beacon and asks the policy when it is to be sent.
      navigator.sendBeacon(address, 'x');
      return [await fetched, await outcome(image)];
    }, address);
    expect(tries).toEqual(['refused', 'refused']);
    expect(asked).toBe(0);
    await expect.poll(() => opened!.complaints.length).toBeGreaterThan(1);
    opened!.complaints.length = 0; // the browser's words on each refusal
    opened!.requests.length = 0;
  });

  test('and nothing is stored', async () => {
    const page = await openRecord();
    expect(await page.evaluate(() => [localStorage.length, sessionStorage.length, document.cookie])).toEqual([
      0,
      0,
      '',
    ]);
  });

  test('the licences of what is bundled are in the help', async () => {
    const page = await openRecord();
    await page.keyboard.press('?');
    const help = await page.locator('dialog').textContent();
    for (const name of [
      'preact',
      '@preact/signals',
      '@preact/signals-core',
      'uplot',
      '@tanstack/table-core',
      '@tanstack/virtual-core',
    ])
      expect(help).toContain(`${name} `);
    expect(help!.match(/Permission is hereby granted/g)?.length).toBe(6);
  });
});
