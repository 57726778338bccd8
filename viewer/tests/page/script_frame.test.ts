// A record beside the page is a script: what a hostile one can do, and what a large one is told.
import { createServer, type Server } from 'node:http';
import { truncateSync, writeFileSync } from 'node:fs';
import type { AddressInfo } from 'node:net';
import { join } from 'node:path';
import type { Page } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, test } from 'vitest';
import { download, dropFile, inFirefox } from '../support/browser';
import { recordText } from '../support/make_record';
import { press, viewerOfTests } from '../support/viewer';

const viewer = viewerOfTests();
const welcome = (page: Page) => page.locator('.welcome');

let server: Server;
let asked: string[] = [];
let address: string;
beforeAll(async () => {
  server = createServer((request, response) => {
    asked.push(request.url!);
    response.setHeader('Access-Control-Allow-Origin', '*');
    response.end('<title>taken</title>');
  });
  await new Promise<void>((resolve) => server.listen(0, '127.0.0.1', resolve));
  address = `http://127.0.0.1:${(server.address() as AddressInfo).port}/`;
});
afterAll(() => void server.close());

/** A record with a name that ends its quotes, runs a script, and goes on so that all is a valid script. */
const hostile = (script: string) =>
  recordText([
    {
      id: 4,
      blocks: [
        { name: 'secret function', time: [[0, 5]] },
        { name: `x', q: (${script}), z: 'y`, time: [[5, 9]] },
      ],
    },
  ]);

/** All the ways out of a document, each tried by itself and its outcome kept in the name of the frame. */
const waysOut = (to: string): [string, string][] => [
  ['navigation', `setTimeout(() => { location.href = '${to}navigation?' + document.URL })`],
  ['replace', `setTimeout(() => { location.replace('${to}replace') })`],
  [
    'the page',
    `(() => { try { top.location = '${to}top' } catch {} try { parent.location = '${to}parent' } catch {} })()`,
  ],
  [
    'a link of the page',
    `(() => { const a = document.createElement('a'); a.href = '${to}link'; a.target = '_top'; document.documentElement.append(a); a.click() })()`,
  ],
  ['a window', `(() => { try { open('${to}window') } catch {} })()`],
  [
    'a form',
    `(() => { const f = document.createElement('form'); f.action = '${to}form'; f.method = 'post'; document.documentElement.append(f); f.submit() })()`,
  ],
  [
    'a refresh',
    `document.head.insertAdjacentHTML('beforeend', '<meta http-equiv="refresh" content="0;url=${to}refresh">')`,
  ],
  ['an image', `new Image().src = '${to}image'`],
  [
    'a script',
    `document.head.append(Object.assign(document.createElement('script'), { src: '${to}script' }))`,
  ],
  [
    'a frame',
    `document.documentElement.append(Object.assign(document.createElement('iframe'), { src: '${to}frame' }))`,
  ],
  ['fetch', `fetch('${to}fetch').catch(() => {})`],
  ['a beacon', `navigator.sendBeacon('${to}beacon', 'x')`],
  ['a socket', `(() => { try { new WebSocket('${to}socket'.replace('http', 'ws')) } catch {} })()`],
  ['events', `(() => { try { new EventSource('${to}events') } catch {} })()`],
  ['a worker', `(() => { try { new Worker('data:text/javascript,fetch("${to}worker")') } catch {} })()`],
  [
    'a style',
    `document.head.append(Object.assign(document.createElement('link'), { rel: 'stylesheet', href: '${to}style' }))`,
  ],
  [
    'a prefetch',
    `document.head.append(Object.assign(document.createElement('link'), { rel: 'prefetch', href: '${to}prefetch' }))`,
  ],
];

/** After the page has shown something and whatever was started has had its time: the browser's own queues are empty. */
async function settled(page: Page): Promise<void> {
  await page.evaluate(
    () =>
      new Promise((done) => requestIdleCallback(() => setTimeout(() => requestAnimationFrame(done), 100))),
  );
}

describe('A hostile name in the script way', () => {
  test('gets out by no road', async () => {
    asked = [];
    for (const [road, script] of waysOut(address)) {
      const page = await viewer.open();
      const ran = page.waitForEvent('console', (message) => message.text() === 'hostile script');
      writeFileSync(
        join(viewer.opened.folder, 'profiler.js'),
        hostile(`console.log('hostile script'), ${script}`),
      );
      await page.reload();
      await ran;
      await settled(page);
      expect(asked, road).toEqual([]);
      expect(page.url(), road).toMatch(/viewer\.html$/);
      expect(page.context().pages().length, road).toBe(1);
      expect(await page.title(), road).toBe('Profile viewer');
      viewer.opened.complaints.length = 0; // the browser's words on each refusal
      viewer.opened.requests.length = 0; // those that it then refused
      await viewer.opened.close();
    }
    await viewer.open();
    viewer.opened.complaints.length = 0;
  });

  // Firefox takes the frame for a part of the page, since both are one file: see the manual on what is trusted.
  test.skipIf(inFirefox)('sees nothing of the page, and cannot change it', async () => {
    const look = [
      "try { parent.document.title = 'changed'; seen.push('document') } catch {}",
      'try { seen.push(parent.document.body.textContent) } catch {}',
      "try { parent.seen = 1; seen.push('global') } catch {}",
      'try { seen.push(String(top.frames[0] === self)) } catch {}',
      "parent.postMessage({ kind: 'nothing', error: 'seen: ' + seen.join() }, '*')",
    ].join('; ');
    const page = await viewer.open({
      files: { 'profiler.js': hostile(`(() => { const seen = []; ${look} })()`.replaceAll("'", '"')) },
    });
    await page.locator('.refusal, .status').first().waitFor();
    expect(await page.title()).toBe('Profile viewer');
    expect(await page.evaluate(() => 'seen' in window)).toBe(false);
    viewer.opened.complaints.length = 0;
  });

  test('is shown as the text that it is when the file is dropped', async () => {
    asked = [];
    const [, script] = waysOut(address)[0]!;
    const page = await viewer.open({ files: { 'other.js': hostile(script) } });
    viewer.opened.complaints.length = 0; // that there is no profiler.js
    await dropFile(page, join(viewer.opened.folder, 'other.js'));
    await page.locator('.status').waitFor();
    await press(page, '3');
    await expect
      .poll(() => page.locator('.table-row > span:first-child').allTextContents())
      .toEqual(['secret function', `x', q: (${script}), z: 'y`]);
    await settled(page);
    expect(asked).toEqual([]);
    expect(page.url()).toMatch(/viewer\.html$/);
  });

  test('cannot pass a record that is none', async () => {
    const forged = `parent.postMessage({ kind: "record", raw: { names: ["a"], threads: ["t"], problems: [], moreProblems: 0, begin: new Float64Array(1), end: new Float64Array(1), blocks: [{ name: 7, thread: 0, parent: -1, first: 0, count: 1 }] } }, "*")`;
    const page = await viewer.open({ files: { 'profiler.js': hostile(forged) } });
    await page.locator('.refusal').waitFor();
    expect(await page.locator('.refusal').innerText()).toContain(
      'profiler.js cannot be shown. The script gave a record that contradicts itself.',
    );
  });

  test('in an exported picture is text', async () => {
    const name = '<image href="http://127.0.0.1:1/" onload="alert(1)"/>&amp;';
    const page = await viewer.open({
      files: { 'profiler.js': recordText([{ id: 4, blocks: [{ name, time: [[0, 1]] }] }]) },
    });
    await page.locator('.status').waitFor();
    await page.getByRole('button', { name: 'Export' }).click();
    const { data } = await download(page, () => page.getByRole('menuitem', { name: 'SVG' }).click());
    const svg = data.toString('utf8');
    expect(svg).toContain(
      '&lt;image href=&quot;http://127.0.0.1:1/&quot; onload=&quot;alert(1)&quot;/&gt;&amp;amp;',
    );
    expect(svg).not.toContain('<image');
  });
});

describe('The page says what it trusts', () => {
  test('on its first sight', async () => {
    const page = await viewer.open();
    viewer.opened.complaints.length = 0;
    const text = await welcome(page).innerText();
    expect(text).toContain('It is read as text and never run');
    expect(text).toContain('use it for records that you made yourself');
  });
});

describe('A large script', () => {
  /** A record and so many bytes of a comment behind it, which take the disk no room. */
  async function openLarge(bytes: number, content: string, alone = false): Promise<Page> {
    const page = await viewer.open({ alone });
    viewer.opened.complaints.length = 0;
    const path = join(viewer.opened.folder, 'large.js');
    writeFileSync(path, content);
    truncateSync(path, bytes);
    await page.evaluate(() => history.replaceState(null, '', '?record=large.js'));
    return page;
  }

  test('is said to be one while it is read; too large for one it is refused with the reason', async () => {
    const page = await openLarge(600_000_000, 'var threads = [\n');
    page.setDefaultTimeout(50_000);
    await page.reload({ waitUntil: 'commit' });
    await page
      .locator('.reading', { hasText: 'It is large, and as a script it takes the browser long' })
      .waitFor();
    await page.locator('.refusal').waitFor();
    viewer.opened.complaints.length = 0; // the browser's words on it
    // Firefox takes longer scripts, and finds that this one is none.
    const why = inFirefox
      ? 'is no valid script'
      : 'is too large for a script: browsers take about 500 MB. Drop the file here';
    expect(await page.locator('.refusal').innerText()).toContain(`large.js ${why}`);
  });

  test('of a record is said to be one before it is shown', async () => {
    const small = recordText([{ id: 4, blocks: [{ name: 'a', time: [[0, 1]] }] }]);
    const page = await openLarge(300_000_000, `${small}//`, true);
    page.setDefaultTimeout(50_000);
    await page.addInitScript(() => {
      const said: string[] = [];
      (window as unknown as { said: string[] }).said = said;
      new MutationObserver(() => {
        const of = (what: string) => document.querySelector(what)?.textContent ?? '';
        const now = /It is large/.exec(of('.reading'))?.[0] ?? /\d+ intervals/.exec(of('.status'))?.[0];
        if (now && now !== said[said.length - 1]) said.push(now);
      }).observe(document, { childList: true, subtree: true, characterData: true });
    });
    await page.reload({ waitUntil: 'commit' });
    await page.locator('.status').waitFor();
    const said = await page.evaluate(() => (window as unknown as { said: string[] }).said);
    expect(said).toEqual(['It is large', '1 intervals']);
  });
});
