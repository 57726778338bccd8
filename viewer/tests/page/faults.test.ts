// Figures, layout, keys and what a reader of the screen is told.
import { join } from 'node:path';
import { writeFileSync } from 'node:fs';
import type { Page } from 'playwright-core';
import { describe, expect, test } from 'vitest';
import { dropFile, inFirefox } from '../support/browser';
import { largeRecord, recordText } from '../support/make_record';
import { cells, details, press, rangeOf, selectionFrame, status, viewerOfTests } from '../support/viewer';

const viewer = viewerOfTests();
const open = (text: string | Uint8Array, size?: { width: number; height: number }) =>
  viewer.open({ files: { 'profiler.js': text }, ...(size && { viewport: size }) });

describe('Figures', () => {
  test('of a time late in the record have all its digits', async () => {
    const page = await open(
      recordText([
        {
          id: 4,
          blocks: [
            { name: 'late', time: [[1911.76, 1911.82]] },
            { name: 'all', time: [[0, 2000]] },
          ],
        },
      ]),
    );
    await press(page, '3');
    await page.locator('.table-row', { hasText: 'late' }).click();
    await page.getByRole('button', { name: 'Longest' }).click();
    await expect.poll(() => rangeOf(page)).toBe('1.911754 s to 1.911826 s');
    expect(await details(page)).toContain('from 1.91176 s');
    expect(await status(page)).toContain(': 72 µs');
  });

  test('on the axis of a histogram are not cut', async () => {
    const time: [number, number][] = Array.from({ length: 24_000 }, (_, i) => [i, i + (i % 2 ? 0.5 : 0.25)]);
    const page = await open(recordText([{ id: 4, blocks: [{ name: 'often', time }] }]));
    await press(page, '3');
    await page.locator('.table-row').click();
    await page.locator('.histogram canvas').waitFor();
    // The numbers are drawn on a canvas: what it writes is listened to.
    const written = await page.evaluate(
      () =>
        new Promise<string[]>((done) => {
          const texts: string[] = [];
          const original = CanvasRenderingContext2D.prototype.fillText;
          CanvasRenderingContext2D.prototype.fillText = function (text, ...rest) {
            texts.push(text);
            original.call(this, text, ...rest);
          };
          document.querySelector<HTMLElement>('.details')!.style.height = '260px';
          const wait = () =>
            texts.some((text) => text.endsWith('k')) ? done(texts) : requestAnimationFrame(wait);
          wait();
        }),
    );
    expect(written).toContain('10k');
    expect(written).not.toContain('10000');
  });

  test('of durations that took no time do not claim to be finer than the stamps', async () => {
    const time: [number, number][] = Array.from({ length: 50 }, (_, i) => [
      1000 + i,
      1000 + i + (i < 20 ? 0 : i),
    ]);
    time.sort((a, b) => a[0] - b[0]);
    const apart = time.map(([begin, end], i): [number, number] => [begin + 100 * i, end + 100 * i]);
    const page = await open(recordText([{ id: 4, blocks: [{ name: 'a', time: apart }] }]));
    await press(page, '3');
    await page.locator('.table-row').click();
    const plot = (await page.locator('.histogram .u-over').boundingBox())!;
    await page.mouse.move(plot.x + 1, plot.y + plot.height / 2);
    await expect
      .poll(() => page.locator('.histogram figcaption').innerText())
      .toMatch(/^below 10 µs, the step of the stamps: 20 \(40\.0 %\); longer: 30/);
  });

  test('of what is in view count the block that fills it', async () => {
    const page = await open(
      recordText([
        { id: 4, blocks: [{ name: 'all', time: [[0, 1000]], blocks: [{ name: 'in', time: [[400, 600]] }] }] },
      ]),
    );
    for (let i = 0; i < 8; ++i) await press(page, '+');
    await press(page, 'v', '3');
    await expect
      .poll(async () => (await cells(page, 'Statistics by name')).map((row) => row.slice(0, 4)))
      .toEqual([
        ['in', '1', '39.0184 ms', '39.0184 ms'],
        ['all', '1', '39.0184 ms', '0'],
      ]);
  });

  test('of a filtered table follow the code page', async () => {
    const page = await viewer.open();
    viewer.opened.complaints.length = 0; // that there is no profiler.js
    const path = join(viewer.opened.folder, 'names.js');
    const text = recordText([
      {
        id: 4,
        blocks: [
          { name: '\xcc\xe8\xf0', time: [[0, 1]] },
          { name: 'x', time: [[2, 3]] },
        ],
      },
    ]);
    writeFileSync(path, Buffer.from(text, 'latin1'));
    await dropFile(page, path);
    await page.locator('.status').waitFor();
    await press(page, '3', 'Control+f');
    await page.keyboard.insertText('Мир');
    await expect.poll(() => page.locator('.empty').innerText()).toContain('No name holds');
    await page.getByLabel('Encoding of names').selectOption('windows-1251');
    await expect
      .poll(async () => (await cells(page, 'Statistics by name')).map(([name]) => name))
      .toEqual(['Мир']);
  });
});

describe('Long names', () => {
  const cpp = (leaf: string) => `${'std::vector<std::basic_string<char>>::'.repeat(9)}${leaf}`;
  const record = recordText([
    {
      id: 4,
      blocks: [
        { name: cpp('emplace_back'), time: [[0, 10]] },
        {
          name: cpp('push_back'),
          time: [[10, 19]],
          blocks: [{ name: 'x'.repeat(10_000) + 'END', time: [[11, 12]] }],
        },
      ],
    },
  ]);

  test.each([1280, 800, 400])('leave the figures in view at a width of %d', async (width) => {
    const page = await open(record, { width, height: 800 });
    await press(page, '3');
    await page.locator('.table-row').first().click();
    for (const column of await page.getByRole('columnheader').all()) {
      const box = (await column.boundingBox())!;
      expect(box.x).toBeGreaterThanOrEqual(0);
      expect(box.x + box.width).toBeLessThanOrEqual(width + 1);
    }
    for (const button of await page.locator('.details button').all()) {
      const box = (await button.boundingBox())!;
      expect(box.width).toBeGreaterThan(15);
      expect(box.x + box.width).toBeLessThanOrEqual(width);
    }
    expect((await page.locator('.details dl').boundingBox())!.y).toBeLessThan(800);
  });

  test('keep their ends, which tell them apart', async () => {
    const page = await open(record, { width: 800, height: 800 });
    await press(page, '3');
    const tails = page.locator('.table-row .name-tail');
    await expect
      .poll(() => tails.allTextContents())
      .toEqual(
        ['::emplace_back', 'x'.repeat(11) + 'END', '>>::push_back']
          .sort()
          .map((tail) => expect.stringContaining(tail.slice(-9)) as string),
      );
    for (const { left, right } of await cutOff(page, '.table-row .name-tail'))
      expect(Math.max(left, right)).toBeLessThanOrEqual(1);
  });

  test('keep their ends in the narrow columns of callers and of a comparison', async () => {
    const inner = { name: 'read', time: [[2, 3]] as [number, number][] };
    const files = ['static_bitmap.cpp', 'thread_message_hook.cpp'].map((name, at) => ({
      name,
      time: [[10 * at, 10 * at + 9]] as [number, number][],
      blocks: [{ ...inner, time: [[10 * at + 1, 10 * at + 2]] as [number, number][] }],
    }));
    const folder = { name: 'src/messageloop', time: [[0, 30]] as [number, number][], blocks: files };
    const page = await open(recordText([{ id: 4, blocks: [folder] }]), { width: 1280, height: 800 });
    await press(page, '3');
    await page.locator('.table-row', { hasText: /^read/ }).click();
    await expect.poll(() => page.locator('.sandwich li').count()).toBeGreaterThan(1);
    await press(page, '4');
    await dropFile(page, join(viewer.opened.folder, 'profiler.js'));
    await page.locator('.table-row').nth(4).waitFor();
    for (const { right } of await cutOff(page, '.table-row .name-leaf .name-tail'))
      expect(right).toBeLessThanOrEqual(0);
    await press(page, '3');
    await page.locator('.sandwich li').first().waitFor();
    for (const { right } of await cutOff(page, '.sandwich li .name-tail'))
      expect(right).toBeLessThanOrEqual(0);
  });

  test('and long figures leave the choices at the bottom in view', async () => {
    const page = await open(record, { width: 1280, height: 800 });
    const { x, y } = (await page.locator('.chart canvas').boundingBox())!;
    await page.keyboard.down('Shift');
    await page.mouse.move(x + 201, y + 100);
    await page.mouse.down();
    await page.mouse.move(x + 702, y + 100, { steps: 3 });
    await page.mouse.up();
    await page.keyboard.up('Shift');
    await page.locator('.status .measured').waitFor();
    const { x: left, width } = (await page.getByLabel('Colours').boundingBox())!;
    expect(left + width).toBeLessThanOrEqual(1280);
  });

  /** Pixels of the texts that are cut at their beginnings and ends. */
  const cutOff = (page: Page, selector: string) =>
    page.locator(selector).evaluateAll((all) =>
      all.map((element) => {
        const range = document.createRange();
        range.selectNodeContents(element);
        const text = range.getBoundingClientRect();
        const frame = element.closest('button, .table-row > span')!.getBoundingClientRect();
        const box = element.getBoundingClientRect();
        return { left: box.left - text.left, right: text.right - frame.right };
      }),
    );
});

describe('Keys', () => {
  const record = recordText([
    {
      id: 4,
      blocks: [
        {
          name: 'a',
          time: [[0, 100]],
          blocks: [
            { name: 'b', time: [[0, 60]] },
            { name: 'c', time: [[60, 90]] },
          ],
        },
      ],
    },
  ]);

  test('work under a Cyrillic layout and with Caps Lock', async () => {
    const page = await open(record);
    const down = (key: string, code: string) =>
      page.evaluate(
        ([key, code]) =>
          document.body.dispatchEvent(new KeyboardEvent('keydown', { key, code, bubbles: true })),
        [key, code] as const,
      );
    await down('+', 'Equal');
    await down('ф', 'KeyA');
    await expect.poll(() => rangeOf(page)).toBe('10 ms to 76.6667 ms');
    await down('D', 'KeyD');
    await expect.poll(() => rangeOf(page)).toBe('16.6667 ms to 83.3333 ms');
    await down('е', 'KeyT');
    await expect.poll(() => page.locator('dialog').count()).toBe(1);
  });

  test('walk the flame graph and show its boxes with their own figures', async () => {
    const page = await open(record);
    await press(page, '2', 'Shift+ArrowDown');
    await expect.poll(() => details(page)).toMatch(/^a\n/);
    await press(page, 'Shift+ArrowDown');
    await expect.poll(() => details(page)).toMatch(/^b\n/);
    expect(await page.locator('.interval').innerText()).toBe('60 ms 60.0 % of all, self 60 ms, once, in a');
    await press(page, 'Shift+ArrowRight');
    await expect.poll(() => details(page)).toMatch(/^c\n/);
    const before = (await selectionFrame(page))!;
    await press(page, 'f');
    await expect
      .poll(async () => (await selectionFrame(page))!.right - (await selectionFrame(page))!.left)
      .toBeGreaterThan(2 * (before.right - before.left));
    await press(page, 'Shift+ArrowLeft', 'Shift+ArrowUp');
    await expect.poll(() => details(page)).toMatch(/^a\n/);
    await press(page, '0');
    expect((await selectionFrame(page))!.left).toBeLessThan(3);
  });

  test('in a table tell a reader of the screen where they are', async () => {
    const page = await open(record);
    await press(page, '3');
    const grid = page.getByRole('grid');
    await grid.focus();
    await press(page, 'ArrowDown', 'ArrowDown');
    const active = await grid.getAttribute('aria-activedescendant');
    const row = page.locator(`[id="${active}"]`);
    expect(await row.getAttribute('aria-selected')).toBe('true');
    expect(await row.getAttribute('aria-rowindex')).toBe('3');
    expect(await grid.getAttribute('aria-rowcount')).toBe('4');
  });
});

describe('Fingers', () => {
  test.skipIf(inFirefox)('zoom by moving apart', async () => {
    const page = await open(recordText([{ id: 4, blocks: [{ name: 'a', time: [[0, 1000]] }] }]));
    const { x, y, width } = (await page.locator('.chart canvas').boundingBox())!;
    const session = await page.context().newCDPSession(page);
    const touch = (type: 'touchStart' | 'touchMove' | 'touchEnd', ...places: number[]) =>
      session.send('Input.dispatchTouchEvent', {
        type,
        touchPoints: places.map((part, id) => ({ x: x + width * part, y: y + 200, id })),
      });
    await touch('touchStart', 0.4, 0.6);
    await touch('touchMove', 0.3, 0.7);
    await touch('touchMove', 0.25, 0.75);
    await touch('touchEnd');
    await expect.poll(() => rangeOf(page)).toBe('300 ms to 700 ms');
  });
});

describe('A large record', () => {
  test('is searched in slices, with the number of hits at the end', async () => {
    const page = await viewer.open();
    viewer.opened.complaints.length = 0;
    const path = join(viewer.opened.folder, 'large.js');
    writeFileSync(path, largeRecord(400_000, 8));
    await dropFile(page, path);
    await page.locator('.status').waitFor();
    await press(page, 'Control+f');
    await page.keyboard.type('query > 0.01 ms');
    await press(page, 'Enter');
    await expect.poll(() => details(page)).toContain('query');
    await expect.poll(() => page.locator('.hits').innerText()).toMatch(/^1 of [\d,]+$/);
  });

  test('has the statistics of all names counted in slices, once for a selection', async () => {
    const page = await viewer.open();
    viewer.opened.complaints.length = 0;
    const path = join(viewer.opened.folder, 'large.js');
    writeFileSync(path, largeRecord(600_000, 8));
    await dropFile(page, path);
    await page.locator('.status').waitFor();
    // What the table holds, picture by picture.
    await page.evaluate(() => {
      const seen: string[] = [];
      (window as unknown as { seen: string[] }).seen = seen;
      const look = () => {
        const table = document.querySelector('[aria-label="Statistics by name"]');
        seen.push(!table ? 'nothing' : table.querySelector('.table-row') ? 'rows' : table.textContent!);
        requestAnimationFrame(look);
      };
      look();
    });
    const seen = () => page.evaluate(() => (window as unknown as { seen: string[] }).seen);
    await press(page, '3');
    await expect.poll(seen).toContain('rows');
    const counting = (await seen()).filter((text) => text.endsWith('Counting…'));
    expect(counting.length).toBeGreaterThan(1);
    // The table is there at once when it is seen again.
    await press(page, '1', '3');
    await page.locator('.table-row').first().waitFor();
    expect((await seen()).filter((text) => text.endsWith('Counting…'))).toEqual(counting);
    // What is selected is counted anew.
    await press(page, 'r');
    await expect
      .poll(async () => (await seen()).filter((text) => text.endsWith('Counting…')).length)
      .toBeGreaterThan(counting.length);
    await page.locator('.table-row').first().click();
    await expect.poll(() => page.locator('.sandwich').innerText()).toMatch(/Callers[^]*Callees/);
  });

  test('has its details counted in slices, of what was selected last', async () => {
    const page = await viewer.open();
    viewer.opened.complaints.length = 0;
    const path = join(viewer.opened.folder, 'large.js');
    const times = (count: number) => Array.from({ length: count }, (_, at) => [2 * at, 2 * at + 1] as const);
    const block = (name: string, count: number) => ({ name, time: times(count) as [number, number][] });
    const thread = (id: number, name: string, count: number) => ({ id, blocks: [block(name, count)] });
    writeFileSync(path, recordText([thread(4, 'many', 300_001), thread(8, 'other', 300_000)]));
    await dropFile(page, path);
    await page.locator('.status').waitFor();
    await press(page, '3');
    await page.locator('.table-row').first().waitFor();
    // What the panel says, one after the other: the name and its count.
    await page.evaluate(() => {
      const said: string[] = [];
      (window as unknown as { said: string[] }).said = said;
      new MutationObserver(() => {
        const text = (document.querySelector('.details') as HTMLElement | null)?.innerText ?? '';
        const count = /Counting…|Count\s+[\d,]+/.exec(text)?.[0].replace(/\s+/, ' ');
        const now = `${text.split('\n')[0]}: ${count}`;
        if (count && now !== said[said.length - 1]) said.push(now);
      }).observe(document.body, { childList: true, subtree: true, characterData: true });
    });
    const said = () => page.evaluate(() => (window as unknown as { said: string[] }).said);
    const click = (...names: string[]) =>
      page.evaluate((wanted) => {
        const rows = [...document.querySelectorAll<HTMLElement>('.table-row')];
        for (const name of wanted) rows.find((row) => row.innerText.includes(name))!.click();
      }, names);
    await click('many');
    await expect.poll(said).toEqual(['many: Counting…', 'many: Count 300,001']);
    await press(page, 'Escape');
    // The other one is selected while the first is being counted, which is not heard of again.
    await click('many', 'other');
    await expect
      .poll(async () => (await said()).slice(2))
      .toEqual(['other: Counting…', 'other: Count 300,000']);
    expect((await said()).length).toBe(4);
  });
});
