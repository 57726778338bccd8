// Pages in Debian's Chromium and Firefox, moved by real mouse and keys. VIEWER_BROWSER says in which.
import {
  copyFileSync,
  mkdtempSync,
  readdirSync,
  readFileSync,
  rmSync,
  statSync,
  writeFileSync,
} from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium, firefox, type Browser, type BrowserContextOptions, type Page } from 'playwright-core';
import { builtPage } from './built';

export const chromiumPath = '/usr/bin/chromium';
export const inFirefox = process.env.VIEWER_BROWSER === 'firefox';

type ColorScheme = 'light' | 'dark';

/** The browser that the test runs in; Firefox knows one colour scheme from its start to its end. */
export const launchBrowser = (colorScheme: ColorScheme = 'light'): Promise<Browser> =>
  inFirefox ? launchFirefox(colorScheme) : launchChromium();

/** Chromium's own sandbox does not work for root, as whom containers run. */
export const launchChromium = (): Promise<Browser> =>
  chromium.launch({ executablePath: chromiumPath, args: process.getuid?.() === 0 ? ['--no-sandbox'] : [] });

/** The channel makes playwright speak WebDriver BiDi, which an unchanged Firefox understands. */
async function launchFirefox(colorScheme: ColorScheme): Promise<Browser> {
  const downloadsPath = mkdtempSync(join(tmpdir(), 'viewer downloads '));
  const browser = await firefox.launch({
    executablePath: '/usr/bin/firefox-esr',
    channel: 'moz-firefox',
    downloadsPath,
    firefoxUserPrefs: {
      'layout.css.prefers-color-scheme.content-override': colorScheme === 'dark' ? 0 : 1,
      // Otherwise a dialog of the system stays open behind a choice of files, and no second one opens.
      'remote.bidi.dismiss_file_pickers.enabled': true,
    },
  });
  downloads.set(browser, downloadsPath);
  browser.on('disconnected', () => rmSync(downloadsPath, { recursive: true }));
  return browser;
}
const downloads = new Map<Browser, string>();

/** A page in a folder of its own, with everything that it asked for and complained of. */
export interface Opened {
  page: Page;
  folder: string;
  /** All addresses asked for; Firefox leaves out those of files. */
  requests: string[];
  /** Errors of scripts and refusals of the policy. */
  complaints: string[];
  close: () => Promise<void>;
}

export interface OpenOptions extends BrowserContextOptions {
  /** Files beside the page, by name. */
  files?: Record<string, string | Uint8Array>;
  query?: string;
  /** In a page of its own, not the one that tests share. */
  alone?: boolean;
}

/** Opens the viewer with a record beside it. Tests share one page where they can, which is quicker. */
export async function openViewer(
  browser: Browser,
  { files = {}, query = '', viewport, alone: wanted = false, ...options }: OpenOptions = {},
): Promise<Opened> {
  const folder = mkdtempSync(join(tmpdir(), 'viewer '));
  copyFileSync(builtPage, join(folder, 'viewer.html'));
  for (const [name, content] of Object.entries(files)) writeFileSync(join(folder, name), content);
  const alone = wanted || Object.keys(options).length > 0;
  const dark = inFirefox && options.colorScheme === 'dark' ? await launchBrowser('dark') : undefined;
  const page = alone ? await newPage(dark ?? browser, options) : await sharedPage(browser);
  await page.setViewportSize(viewport ?? { width: 1280, height: 800 });
  const { requests, complaints } = seenBy.get(page)!;
  requests.length = complaints.length = 0;
  await page.goto(pathToFileURL(join(folder, 'viewer.html')).href + query);
  await page.locator('.status, .welcome, .refusal').first().waitFor();
  return {
    page,
    folder,
    requests,
    complaints,
    close: async () => {
      if (alone) await page.context().close();
      else await page.mouse.move(0, 0);
      await dark?.close();
      rmSync(folder, { recursive: true });
    },
  };
}

const sharedPages = new Map<Browser, Page>();
const seenBy = new WeakMap<Page, Pick<Opened, 'requests' | 'complaints'>>();

async function sharedPage(browser: Browser): Promise<Page> {
  const page = sharedPages.get(browser);
  if (page && !page.isClosed()) return page;
  const made = await newPage(browser, {});
  sharedPages.set(browser, made);
  return made;
}

async function newPage(browser: Browser, options: BrowserContextOptions): Promise<Page> {
  const context = await browser.newContext({ colorScheme: 'light', ...options });
  const page = await context.newPage();
  const requests: string[] = [];
  const complaints: string[] = [];
  seenBy.set(page, { requests, complaints });
  context.on('request', (request) => requests.push(request.url()));
  page.on('pageerror', (error) => complaints.push(error.message));
  page.on('console', (message) => {
    if (message.type() === 'error') complaints.push(message.text());
  });
  if (inFirefox) page.mouse.dblclick = (x, y) => doubleClickByScript(page, x, y);
  return page;
}

/** BiDi counts the clicks of one command only, and playwright sends each of its own. */
async function doubleClickByScript(page: Page, x: number, y: number): Promise<void> {
  for (let clicks = 0; clicks < 2; ++clicks) await page.mouse.click(x, y);
  await page.evaluate(
    ([clientX, clientY]) =>
      document
        .elementFromPoint(clientX, clientY)!
        .dispatchEvent(new MouseEvent('dblclick', { clientX, clientY, bubbles: true, detail: 2 })),
    [x, y] as const,
  );
}

/** Resolves when what has changed is on the screen. Needs no timer. */
export const painted = (page: Page) =>
  page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));

/** Drops a file onto the middle of the page, as the system's file manager would. */
export async function dropFile(page: Page, path: string): Promise<void> {
  if (inFirefox) return dropByScript(page, path);
  const session = await page.context().newCDPSession(page);
  const { width, height } = page.viewportSize()!;
  const data = { items: [], files: [path], dragOperationsMask: 1 };
  for (const type of ['dragEnter', 'dragOver', 'drop'] as const)
    await session.send('Input.dispatchDragEvent', { type, x: width / 2, y: height / 2, data });
}

/** BiDi drags no files: a file input gives the page the real file, and a script drops it. */
async function dropByScript(page: Page, path: string): Promise<void> {
  const input = await page.evaluateHandle(() => {
    const made = document.createElement('input');
    made.type = 'file';
    return made;
  });
  await input.setInputFiles(path);
  await input.evaluate((made) => {
    const dataTransfer = new DataTransfer();
    dataTransfer.items.add(made.files![0]!);
    const [clientX, clientY] = [innerWidth / 2, innerHeight / 2];
    const target = document.elementFromPoint(clientX, clientY)!;
    for (const type of ['dragenter', 'dragover', 'drop'])
      target.dispatchEvent(
        new DragEvent(type, { dataTransfer, clientX, clientY, bubbles: true, cancelable: true }),
      );
  });
}

/** Chooses a file in the dialog that a button opens. */
export async function chooseFile(page: Page, open: () => Promise<unknown>, path: string): Promise<void> {
  const [chooser] = await Promise.all([page.waitForEvent('filechooser'), open()]);
  await chooser.setFiles(path);
}

/** What the page hands to the browser's downloads. */
export async function download(
  page: Page,
  ask: () => Promise<unknown>,
): Promise<{ name: string; data: Buffer }> {
  if (inFirefox) return downloadByFolder(downloads.get(page.context().browser()!)!, ask);
  const [made] = await Promise.all([page.waitForEvent('download'), ask()]);
  return { name: made.suggestedFilename(), data: readFileSync((await made.path())!) };
}

/** BiDi tells of a download of the page's own making too late for playwright: it is seen in its folder. */
async function downloadByFolder(folder: string, ask: () => Promise<unknown>) {
  // Measurements and pictures use this file without vitest.
  const { vi } = await import('vitest');
  await ask();
  const [name] = await vi.waitUntil(
    () => {
      const names = readdirSync(folder);
      return names.length === 1 && statSync(join(folder, names[0]!)).size > 0 && names;
    },
    { timeout: 10_000 },
  );
  const data = readFileSync(join(folder, name!));
  rmSync(join(folder, name!));
  return { name: name!, data };
}
