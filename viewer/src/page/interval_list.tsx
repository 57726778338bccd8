// A list of intervals beside the view: all of one name, or all hits of the search.
import { computed, signal } from '@preact/signals';
import { duration, selfTime } from '../record/profile';
import { timeIn } from '../record/range';
import { sortIntervals } from '../record/sort_intervals';
import { formatCount, formatTime, shortened } from './format';
import { Grid, type GridColumn } from './grid';
import { Name } from './name';
import { showListed } from './navigation';
import { hits } from './search';
import { slicedSignal } from './sliced';
import * as state from './state';

/** An element cannot be higher than browsers allow, which is this many rows. */
const mostRows = 500_000;

const sorting = signal({ id: 'duration', desc: true });

/** The intervals of the list, not in order. */
const listed = computed(() => {
  const profile = state.profile.value;
  if (!profile) return new Int32Array(0);
  if (state.list.value === 'hits') return hits.value.ids;
  const name = state.selectedName.value;
  if (state.list.value !== 'name' || name === undefined) return new Int32Array(0);
  const { threads, range } = state.selection.value;
  const ids: number[] = [];
  for (const block of profile.blocks) {
    if (block.name !== name || (threads && !threads.has(block.thread))) continue;
    for (let i = block.first; i < block.first + block.count; ++i)
      if (!range || timeIn(profile, profile.ids[i]!, range) >= 0) ids.push(profile.ids[i]!);
  }
  return Int32Array.from(ids);
});

/** In the order that is chosen; undefined while they are being sorted. */
const ordered = slicedSignal(() => {
  const profile = state.profile.value;
  if (!profile || (state.list.value !== 'name' && state.list.value !== 'hits')) return undefined;
  const { blocks, block, begin } = profile;
  const { id, desc } = sorting.value;
  const threadPlace = new Map(state.orderedThreads.value.map((thread, place) => [thread, place]));
  const { names } = state;
  const namePlace = new Map(
    id === 'name'
      ? names.value
          .map((_, name) => name)
          .sort((a, b) => (names.value[a]! < names.value[b]! ? -1 : 1))
          .map((name, place) => [name, place])
      : [],
  );
  const keys: Record<string, (id: number) => number> = {
    begin: (id) => begin[id]!,
    duration: (id) => duration(profile, id),
    self: (id) => selfTime(profile, id),
    thread: (id) => threadPlace.get(blocks[block[id]!]!.thread) ?? 0,
    name: (id) => namePlace.get(blocks[block[id]!]!.name)!,
  };
  return sortIntervals(listed.value, keys[id]!, begin, desc);
});

const figures: GridColumn[] = [
  { id: 'duration', title: 'Duration' },
  { id: 'self', title: 'Self', hint: 'Time inside, without the blocks in it' },
  { id: 'begin', title: 'Begin' },
];

export function IntervalList() {
  const profile = state.profile.value!;
  const ids = ordered.value;
  const ofHits = state.list.value === 'hits';
  const first: GridColumn = ofHits ? { id: 'name', title: 'Name' } : { id: 'thread', title: 'Thread' };
  const columns = ofHits ? [first, ...figures, { id: 'thread', title: 'Thread' }] : [first, ...figures];
  if (!ids) return <p class="empty">Sorting…</p>;
  const selected = state.selectedInterval.value;
  const threadOf = (id: number) => state.threadName(profile.blocks[profile.block[id]!]!.thread);
  const nameOf = (id: number) => state.names.value[profile.blocks[profile.block[id]!]!.name]!;
  const texts = (id: number) => [
    formatTime(duration(profile, id)) + (profile.open[id] ? ' (open)' : ''),
    formatTime(selfTime(profile, id)),
    formatTime(profile.begin[id]!),
  ];
  return (
    <>
      <p class="hint list-note">
        {ids.length === 1 ? '1 interval' : `${formatCount(ids.length)} intervals`}
        {ids.length > mostRows && `; the first ${formatCount(mostRows)} in this order`}
      </p>
      <Grid
        label={ofHits ? 'Hits of the search' : 'Intervals of the name'}
        columns={columns}
        sorted={sorting.value}
        onSort={(id) =>
          (sorting.value = {
            id,
            desc: sorting.value.id === id ? !sorting.value.desc : id === 'duration' || id === 'self',
          })
        }
        count={Math.min(ids.length, mostRows)}
        cells={(index) => {
          const id = ids[index]!;
          return ofHits
            ? [<Name text={nameOf(id)} />, ...texts(id), shortened(threadOf(id), 40)]
            : [shortened(threadOf(id), 60), ...texts(id)];
        }}
        copy={(index) => {
          const id = ids[index]!;
          return ofHits ? [nameOf(id), ...texts(id), threadOf(id)] : [threadOf(id), ...texts(id)];
        }}
        selected={selected === undefined ? -1 : ids.indexOf(selected)}
        onSelect={(index) => showListed(ids[index]!)}
        empty={ofHits ? 'The search finds nothing.' : 'Select a name to see its intervals.'}
      />
    </>
  );
}
