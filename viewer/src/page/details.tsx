import { computed } from '@preact/signals';
import { duration, pathOf, resolutionAt, selfTime } from '../record/profile';
import { durationsOf } from '../record/statistics';
import { formatCount, formatTime, oneLine } from './format';
import { Histogram } from './histogram';
import * as state from './state';
import { fitSelection, goToLongest } from './navigation';

const durations = computed(() => {
  const { profile, selectedName, selection } = state;
  if (!profile.value || selectedName.value === undefined) return new Float64Array(0);
  return durationsOf(profile.value, selectedName.value, selection.value);
});

/** What is selected: its figures and how its durations spread. */
export function Details() {
  const name = state.selectedName.value;
  const profile = state.profile.value;
  if (name === undefined || !profile) return null;
  const row = state.statistics.value.find((candidate) => candidate.name === name);
  return (
    <section class="details" aria-label="Selection">
      <div class="details-text">
        <h2>
          {oneLine(state.names.value[name]!)}
          <button title="Show the longest one in the timeline" onClick={() => goToLongest(name)}>
            Longest
          </button>
          {state.selectedInterval.value !== undefined && (
            <button title="Fit it into the timeline (f)" onClick={fitSelection}>
              Fit
            </button>
          )}
          <button
            class="close"
            title="Clear the selection (Escape)"
            onClick={() => state.select(undefined, undefined)}
          >
            ×
          </button>
        </h2>
        <IntervalFigures />
        {row ? (
          <dl aria-label="Figures of the name">
            <Pair
              term="Count"
              value={formatCount(row.count) + (row.open ? ` (${row.open} never closed)` : '')}
            />
            <Pair term="Total" value={formatTime(row.total)} />
            <Pair term="Self" value={formatTime(row.self)} />
            <Pair term="Mean" value={formatTime(row.mean)} />
            <Pair term="Median" value={formatTime(row.median)} />
            <Pair term="Min" value={formatTime(row.min)} />
            <Pair term="Max" value={formatTime(row.max)} />
            <Pair term="Deviation" value={formatTime(row.deviation)} />
          </dl>
        ) : (
          <p class="hint">No interval of this name lies wholly in the range.</p>
        )}
      </div>
      <Histogram durations={durations.value} />
    </section>
  );
}

function IntervalFigures() {
  const id = state.selectedInterval.value;
  const profile = state.profile.value;
  if (id === undefined || !profile) return null;
  const block = profile.block[id]!;
  const path = pathOf({ ...profile, names: state.names.value }, block);
  // The steps of both stamps.
  const unsure = resolutionAt(profile.begin[id]!) / 2 + resolutionAt(profile.end[id]!) / 2;
  return (
    <p class="interval" aria-live="polite">
      <b>{formatTime(duration(profile, id))}</b>
      {profile.open[id] ? ' so far, never closed' : ''}
      <span class="hint">
        {' '}
        ± {formatTime(unsure)}, self {formatTime(selfTime(profile, id))}, from{' '}
        {formatTime(profile.begin[id]!)} on {state.threadName(profile.blocks[block]!.thread)}
        {path.length > 1 ? `, in ${path.slice(0, -1).slice(-6).map(oneLine).join(' › ')}` : ''}
      </span>
    </p>
  );
}

function Pair({ term, value }: { term: string; value: string }) {
  return (
    <div>
      <dt>{term}</dt>
      <dd>{value}</dd>
    </div>
  );
}
