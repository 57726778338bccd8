// All that the page knows. Nothing of it is stored: it goes with the page.
import { batch, computed, effect, signal } from '@preact/signals';
import { decodeNames, guessEncoding } from '../record/bytes';
import { compare } from '../record/compare';
import { makeCallTree } from '../record/call_tree';
import { makeProfile, type Profile } from '../record/profile';
import type { RawRecord } from '../record/record';
import { statisticsByName, type Range, type Selection } from '../record/statistics';
import { Walker } from '../record/walk';
import { ChartState } from './chart/chart_state';
import { flameChart, timelineChart } from './chart/model';

export type View = 'timeline' | 'flame' | 'statistics' | 'compare';
export type Dialog = 'threads' | 'help' | 'problems';
export type ThreadOrder = 'begin' | 'activity' | 'id';

export interface Opened {
  title: string;
  raw: RawRecord;
  profile: Profile;
  /** Opened as a script: the browser has already read the escapes in names. */
  asScript: boolean;
}

export const opened = signal<Opened | undefined>(undefined);
export const second = signal<Opened | undefined>(undefined);
/** What is being read, and how much of it: 0 to 1. */
export const reading = signal<{ title: string; part: number } | undefined>(undefined);
/** Why the last file could not be shown. */
export const refusal = signal<string | undefined>(undefined);

export const view = signal<View>('timeline');
export const dialog = signal<Dialog | undefined>(undefined);
export const foldRecursion = signal(false);
export const onlyVisible = signal(false);
export const search = signal('');
export const encoding = signal('utf-8');
export const theme = signal<'auto' | 'light' | 'dark'>('auto');

export const threadOrder = signal<ThreadOrder>('begin');
export const hidden = signal<ReadonlySet<number>>(new Set());
export const renamed = signal<ReadonlyMap<number, string>>(new Map());
/** The thread that n and p have gone to; undefined for all. */
export const currentThread = signal<number | undefined>(undefined);

export const selectedName = signal<number | undefined>(undefined);
/** An interval of the timeline. */
export const selectedInterval = signal<number | undefined>(undefined);

export const timeline = new ChartState();
export const flame = new ChartState();

export const profile = computed(() => opened.value?.profile);
export const walker = computed(() => (profile.value ? new Walker(profile.value) : undefined));
export const names = computed(() => {
  const record = opened.value;
  return record ? decodeNames(record.raw.names, encoding.value) : [];
});

export const darkNow = signal(false);
const systemDark = matchMedia('(prefers-color-scheme: dark)');
const applyTheme = () => {
  darkNow.value = theme.value === 'dark' || (theme.value === 'auto' && systemDark.matches);
  document.documentElement.dataset.theme = darkNow.value ? 'dark' : 'light';
};
effect(applyTheme);
systemDark.addEventListener('change', applyTheme);

export function threadName(index: number): string {
  return renamed.value.get(index) ?? profile.value?.threads[index]?.name ?? '';
}

/** The thread whose first block began first: most likely the one that started the others. */
export const mainThread = computed(() => {
  const threads = profile.value?.threads ?? [];
  let first = -1;
  threads.forEach((thread, index) => {
    if (thread.firstBegin < (threads[first]?.firstBegin ?? Infinity)) first = index;
  });
  return first;
});

export const orderedThreads = computed(() => {
  const threads = profile.value?.threads ?? [];
  const keys = {
    begin: (index: number) => threads[index]!.firstBegin,
    activity: (index: number) => -threads[index]!.busy,
    id: (index: number) => threads[index]!.id,
  };
  const key = keys[threadOrder.value];
  return threads.map((_, index) => index).sort((a, b) => compareNumbers(key(a), key(b)) || a - b);
});

/** Infinity is its own equal, and what is no number comes last. */
function compareNumbers(a: number, b: number): number {
  return a === b ? 0 : Number.isNaN(a) ? 1 : Number.isNaN(b) || a < b ? -1 : 1;
}

export const visibleThreads = computed(() =>
  orderedThreads.value.filter((thread) => !hidden.value.has(thread)),
);

export const timelineModel = computed(() =>
  profile.value
    ? timelineChart(profile.value, names.value, visibleThreads.value, threadName, mainThread.value)
    : undefined,
);

/** The visible range, a moment after it has come to rest: statistics of a million intervals take time. */
export const restingRange = signal<Range | undefined>(undefined);
let resting: ReturnType<typeof setTimeout> | undefined;
effect(() => {
  const range = onlyVisible.value ? timeline.range.value : undefined;
  clearTimeout(resting);
  if (!range) restingRange.value = undefined;
  else resting = setTimeout(() => (restingRange.value = range), 120);
});

export const selection = computed<Selection>(() => ({
  range: restingRange.value,
  threads: hidden.value.size > 0 ? new Set(visibleThreads.value) : undefined,
  foldRecursion: foldRecursion.value,
}));

export const statistics = computed(() =>
  profile.value ? statisticsByName(profile.value, selection.value) : [],
);

export const callTree = computed(() => {
  const chosen = currentThread.value;
  return profile.value
    ? makeCallTree(profile.value, {
        ...selection.value,
        threads: chosen === undefined ? selection.value.threads : new Set([chosen]),
      })
    : undefined;
});

export const flameModel = computed(() => {
  const title = currentThread.value === undefined ? 'All threads shown' : threadName(currentThread.value);
  return callTree.value ? flameChart(callTree.value, names.value, title) : undefined;
});

export const compared = computed(() => {
  if (!opened.value || !second.value) return [];
  const inEncoding = ({ profile, raw }: Opened) => ({
    ...profile,
    names: decodeNames(raw.names, encoding.value),
  });
  return compare(inEncoding(opened.value), inEncoding(second.value));
});

/** Shows a record from its beginning, with nothing chosen. */
export function show(raw: RawRecord, title: string, asScript: boolean): void {
  const profile = makeProfile(raw);
  batch(() => {
    opened.value = { title, raw, profile, asScript };
    encoding.value = guessEncoding([...raw.names, ...raw.threads]);
    refusal.value = undefined;
    view.value = 'timeline';
    search.value = '';
    hidden.value = new Set();
    renamed.value = new Map();
    currentThread.value = undefined;
    select(undefined, undefined);
    timeline.reset(profile.last);
  });
}

export function showSecond(raw: RawRecord, title: string): void {
  batch(() => {
    second.value = { title, raw, profile: makeProfile(raw), asScript: false };
    refusal.value = undefined;
    view.value = 'compare';
  });
}

export function select(name: number | undefined, interval: number | undefined): void {
  batch(() => {
    selectedName.value = name;
    selectedInterval.value = interval;
  });
}

export function selectInterval(interval: number): void {
  const { blocks, block } = profile.value!;
  select(blocks[block[interval]!]!.name, interval);
}

/** The flame graph's axis is another one whenever its tree is. */
effect(() => {
  const total = callTree.value?.total;
  if (total !== undefined) flame.reset(total);
});
