// The view of a record, so that it can be shown again: after a reload, from a file or from a link.
import { batch } from '@preact/signals';
import { pathOf, type Profile } from '../record/profile';
import * as state from './state';
import { readView, type KeptView } from './view_text';

/** Threads by their names, since a later run may have others. */
function threadKeys(profile: Profile): string[] {
  const seen = new Map<string, number>();
  return profile.threads.map(({ name }) => {
    const nth = seen.get(name) ?? 0;
    seen.set(name, nth + 1);
    return nth === 0 ? name : `${name} (${nth + 1})`;
  });
}

export function takeView(): KeptView | undefined {
  const record = state.opened.value;
  if (!record) return undefined;
  const { profile } = record;
  const keys = threadKeys(profile);
  const keysOf = (threads: Iterable<number>) => [...threads].map((thread) => keys[thread]!);
  const id = state.selectedInterval.value;
  const name = state.selectedName.value;
  const path = state.selectedPath.value;
  const { range, scroll } = state.timeline;
  return {
    kind: 'kexlib profile view',
    record: record.title,
    view: state.view.value,
    range: range.value,
    scroll: scroll.value,
    thread: state.currentThread.value === undefined ? undefined : keys[state.currentThread.value],
    order: state.threadOrder.value,
    ownOrder: keysOf(state.ownOrder.value),
    hidden: keysOf(state.hidden.value),
    collapsed: keysOf(state.collapsed.value),
    pinned: keysOf(state.pinned.value),
    renamed: [...state.renamed.value].map(([thread, given]) => [keys[thread]!, given]),
    search: state.search.value,
    inView: state.onlyVisible.value,
    fold: state.foldRecursion.value,
    encoding: state.encoding.value,
    selected:
      id !== undefined
        ? intervalKey(profile, id, keys)
        : name !== undefined
          ? { path: (path ?? [name]).map((part) => profile.names[part]!), ofTree: path !== undefined }
          : undefined,
    span: state.span.value,
    notes: [...state.notes.value],
    list: state.list.value,
  };
}

type Selected = NonNullable<KeptView['selected']>;

function intervalKey(profile: Profile, id: number, keys: readonly string[]): Selected {
  const block = profile.block[id]!;
  const { thread, first, count } = profile.blocks[block]!;
  return {
    path: pathOf(profile, block),
    thread: keys[thread]!,
    begin: profile.begin[id]!,
    nth: profile.ids.subarray(first, first + count).indexOf(id),
  };
}

/** The interval that was selected; in another run of the program the one of the same place among its like. */
function findInterval(profile: Profile, { path, thread, begin, nth = 0 }: Selected): number | undefined {
  const at = threadKeys(profile).indexOf(thread ?? '');
  const block = profile.blocks.findIndex(
    (candidate, index) =>
      candidate.thread === at &&
      candidate.depth === path.length - 1 &&
      candidate.count > 0 &&
      profile.names[candidate.name] === path[path.length - 1] &&
      pathOf(profile, index).every((name, depth) => name === path[depth]),
  );
  if (block < 0) return undefined;
  const { first, count } = profile.blocks[block]!;
  const ids = profile.ids.subarray(first, first + count);
  return ids.find((id) => profile.begin[id] === begin) ?? ids[Math.min(nth, count - 1)];
}

export function applyView(kept: KeptView): void {
  const record = state.opened.value;
  if (!record) return;
  const { profile } = record;
  const place = new Map(threadKeys(profile).map((key, thread) => [key, thread]));
  const threadsOf = (keys: readonly string[]) =>
    keys.flatMap((key) => (place.has(key) ? [place.get(key)!] : []));
  batch(() => {
    state.view.value = kept.view === 'compare' && !state.second.value ? 'timeline' : kept.view;
    state.threadOrder.value = kept.order;
    state.ownOrder.value = threadsOf(kept.ownOrder);
    state.hidden.value = new Set(threadsOf(kept.hidden));
    state.collapsed.value = new Set(threadsOf(kept.collapsed));
    state.pinned.value = new Set(threadsOf(kept.pinned));
    state.renamed.value = new Map(
      kept.renamed.flatMap(([key, name]) => threadsOf([key]).map((thread) => [thread, name] as const)),
    );
    state.search.value = kept.search;
    state.onlyVisible.value = kept.inView;
    state.foldRecursion.value = kept.fold;
    state.encoding.value = kept.encoding;
    state.notes.value = kept.notes;
    state.span.value = kept.span;
    state.currentThread.value = kept.thread === undefined ? undefined : place.get(kept.thread);
    state.timeline.show(kept.range.from, kept.range.to);
    state.timeline.scroll.value = kept.scroll;
    const { selected } = kept;
    if (selected?.thread !== undefined) {
      const id = findInterval(profile, selected);
      if (id !== undefined) state.selectInterval(id);
    } else if (selected) {
      const names = selected.path.map((name) => profile.names.indexOf(name));
      if (!names.includes(-1)) {
        state.select(names[names.length - 1]!);
        if (selected.ofTree) state.selectedPath.value = names;
      }
    }
    state.list.value = kept.list;
  });
}

const linkMarker = '#view=';

/** The address of the page with the view in it. */
export function linkOfView(): string {
  const kept = takeView();
  const base = location.href.replace(/#.*$/, '');
  return kept ? base + linkMarker + encodeURIComponent(JSON.stringify(kept)) : base;
}

/** The view that the page's address names. */
export function viewOfLink(): KeptView | undefined {
  if (!location.hash.startsWith(linkMarker)) return undefined;
  try {
    return readView(decodeURIComponent(location.hash.slice(linkMarker.length)));
  } catch {
    return undefined;
  }
}
