// Whatever is selected is on screen afterwards.
import type { Page } from 'playwright-core';
import { describe, expect, test } from 'vitest';
import { recordText } from '../support/make_record';
import { details, press, selectionFrame, viewerOfTests } from '../support/viewer';

const viewer = viewerOfTests();

/** Thirty lanes, of which about ten are in view; thread 100 + n runs "work n" at the n-th tenth of a second. */
const record = recordText(
  Array.from({ length: 30 }, (_, n) => ({
    id: 100 + n,
    blocks: [
      {
        name: 'thread',
        time: [[n * 0.01, 3000]] as [number, number][],
        blocks: [
          { name: `work ${n}`, time: [[n * 100 + 20, n * 100 + 80]] as [number, number][] },
          { name: 'same', time: [[n * 100 + 81, n * 100 + 82 + n / 100]] as [number, number][] },
        ],
      },
    ],
  })),
);
const open = () => viewer.open({ files: { 'profiler.js': record } });

/** The frame around the selection is whole, as high as a block, and in the chart. */
async function expectShown(page: Page): Promise<void> {
  const frame = await selectionFrame(page);
  expect(frame, 'no frame of a selection in the picture').toBeDefined();
  const { height } = (await page.locator('.chart canvas').boundingBox())!;
  expect(frame!.bottom - frame!.top).toBeGreaterThanOrEqual(15);
  expect(frame!.bottom).toBeLessThan(height);
}

describe('What is selected is in view', () => {
  test('after a search', async () => {
    const page = await open();
    await press(page, 'Control+f');
    await page.keyboard.type('work 20');
    await press(page, 'Enter');
    await expect.poll(() => details(page)).toContain('on Thread 120');
    await expectShown(page);
    await press(page, 'Escape', 'Control+f');
    await page.keyboard.type('work 2');
    await press(page, 'Shift+Enter');
    await expect.poll(() => details(page)).toContain('on Thread 102');
    await expectShown(page);
  });

  test('after Longest', async () => {
    const page = await open();
    await press(page, '3', 'Control+f');
    await page.keyboard.type('same');
    await page.locator('.table-row', { hasText: 'same' }).click();
    await page.getByRole('button', { name: 'Longest' }).click();
    await expect.poll(() => details(page)).toContain('on Thread 129');
    await expectShown(page);
  });

  test('after Longest once more, when it was scrolled away', async () => {
    const page = await open();
    await press(page, '3');
    await page.locator('.table-row', { hasText: 'work 19' }).click();
    await page.getByRole('button', { name: 'Longest' }).click();
    await expectShown(page);
    for (let i = 0; i < 60; ++i) await press(page, 'w');
    await page.mouse.move(600, 300);
    expect(await selectionFrame(page)).toBeUndefined();
    await page.getByRole('button', { name: 'Longest' }).click();
    await expectShown(page);
  });

  test('after a double click in the statistics, on a row at the bottom', async () => {
    const page = await open();
    await press(page, '3');
    const box = (await page.locator('.table-row', { hasText: 'work 17' }).boundingBox())!;
    await page.mouse.dblclick(box.x + 60, box.y + 12);
    await expect.poll(() => details(page)).toContain('on Thread 117');
    await expectShown(page);
  });

  test('after a click on a block in a lane at the bottom, where the panel opens', async () => {
    const page = await open();
    const { x, y, width, height } = (await page.locator('.chart canvas').boundingBox())!;
    // The lowest place with a block under it.
    let lowest = y + height;
    for (let up = 3; (await page.locator('.tip').count()) === 0; up += 3) {
      expect(up).toBeLessThan(60);
      await page.mouse.move(x + width / 2, y + height - up);
      await selectionFrame(page); // has been drawn
      lowest = y + height - up;
    }
    await page.mouse.click(x + width / 2, lowest - 4); // not at its edge
    await page.locator('.details').waitFor();
    await expectShown(page);
  });

  test('after keys', async () => {
    const page = await open();
    for (let i = 0; i < 24; ++i) await press(page, 'n');
    await press(page, 'Shift+ArrowDown');
    await expect.poll(() => details(page)).toContain('on Thread 123');
    await expectShown(page);
    await press(page, 'Shift+ArrowDown');
    await expect.poll(() => details(page)).toMatch(/^work 23/);
    await expectShown(page);
    await press(page, 'Shift+ArrowRight');
    await expect.poll(() => details(page)).toMatch(/^same/);
    await expectShown(page);
  });

  test('after a click in the list of intervals', async () => {
    const page = await open();
    await press(page, '3', 'Control+f');
    await page.keyboard.type('same');
    await page.locator('.table-row', { hasText: 'same' }).click();
    await press(page, 'Escape');
    await press(page, 'l');
    await page.locator('.list .table-row', { hasText: 'Thread 127' }).click();
    await expect.poll(() => details(page)).toContain('on Thread 127');
    await expectShown(page);
  });

  test('after going back and forward', async () => {
    const page = await open();
    await press(page, 'Control+f');
    await page.keyboard.type('work 29');
    await press(page, 'Enter', 'Escape');
    await expectShown(page);
    await page.waitForFunction(() => document.querySelector('.details'));
    await press(page, 'Control+f');
    await page.keyboard.type('work 1');
    await press(page, 'Enter', 'Escape', 'Backspace');
    await expect.poll(() => details(page)).toMatch(/^work 29/);
    await expectShown(page);
    await press(page, 'Alt+ArrowRight');
    await expect.poll(() => details(page)).toMatch(/^work 1\n/);
    await expectShown(page);
  });

  test('where its lane was hidden or folded', async () => {
    const page = await open();
    await press(page, 't');
    await page.getByLabel('Show Thread 115').uncheck();
    await page.getByRole('button', { name: 'Fold all', exact: true }).click();
    await press(page, 'Escape', '3');
    await page.locator('.table-row', { hasText: 'work 14' }).click();
    await page.getByRole('button', { name: 'Longest' }).click();
    await expect.poll(() => details(page)).toContain('on Thread 114');
    await expectShown(page);
  });

  test('when the panel is made higher, or the window lower', async () => {
    const page = await open();
    await press(page, 'Control+f');
    await page.keyboard.type('work 9');
    await press(page, 'Enter', 'Escape');
    await expectShown(page);
    await page.getByRole('separator', { name: 'Height of the details' }).focus();
    for (let i = 0; i < 8; ++i) await press(page, 'ArrowUp');
    await expectShown(page);
    await page.setViewportSize({ width: 1280, height: 600 });
    await expectShown(page);
  });

  test('in the flame graph, after its name was selected elsewhere', async () => {
    const blocks = Array.from({ length: 60 }, (_, n) => n).reduceRight<object[]>(
      (inner, n) => [{ name: `level ${n}`, time: [[n, 200 - n]], blocks: inner }],
      [],
    );
    const page = await viewer.open({
      files: { 'profiler.js': recordText([{ id: 4, blocks: blocks as never }]) },
    });
    await press(page, '3', 'Control+f');
    await page.keyboard.type('level 55');
    await page.locator('.table-row', { hasText: 'level 55' }).click();
    await press(page, '2');
    await expectShown(page);
    await press(page, 'Shift+ArrowDown', 'Shift+ArrowDown', 'Shift+ArrowDown');
    await expect.poll(() => details(page)).toMatch(/^level 58/);
    await expectShown(page);
  });
});
