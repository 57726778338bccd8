import { computed } from '@preact/signals';
import { duration, pathOf, selfTime, stepAt, timesLost, type Profile } from '../record/profile';
import type { Compared } from '../record/compare';
import { spreadOf, spreadOfName, type Durations } from '../record/statistics';
import { pathOfNode } from '../record/tree_path';
import { copyText } from './clipboard';
import { formatCount, formatShare, formatTime, shortened } from './format';
import { Histogram } from './histogram';
import { Name, shortenedPath } from './name';
import { goToLongest } from './navigation';
import { NoteEntry } from './notes';
import { Separator, separatorHeight } from './separator';
import { slicedSignal } from './sliced';
import * as state from './state';
import { currentChart, fitSelection } from './walked';
import { differenceTexts } from './difference_texts';

/** Of the selected name; undefined while it is being made. */
const spread = slicedSignal(() => {
  const { profile, selectedName, selection } = state;
  return profile.value && selectedName.value !== undefined
    ? spreadOfName(profile.value, selectedName.value, selection.value)
    : undefined;
});

const durations = computed((): Durations[] | undefined => spread.value && [spread.value]);

/** The line of the comparison that is selected. */
const comparedRow = computed(() =>
  state.view.value === 'compare' && state.profile.value && state.second.value
    ? state.selectedComparison.value
    : undefined,
);

/** Durations of that line in both records; undefined while they are being sorted. */
const compared = slicedSignal(() => {
  const row = comparedRow.value;
  return row && inBoth(row);
});

function* inBoth({ blocks }: Compared): Generator<void, Durations[]> {
  const [before, after] = [new Set(blocks.before), new Set(blocks.after)];
  return [
    yield* spreadOf(state.profile.value!, (block) => before.has(block)),
    yield* spreadOf(state.second.value!.profile, (block) => after.has(block)),
  ];
}

/** What is selected: its figures and how its durations spread. */
export function Details() {
  const name = state.selectedName.value;
  const profile = state.profile.value;
  if (!profile) return null;
  const inTable = !currentChart();
  // Beside a table it keeps its room, so that rows stay where they were clicked.
  if (name === undefined && comparedRow.value)
    return (
      <section class="details" aria-label="Selection" style={{ height: `${state.detailsHeight.value}px` }}>
        <div class="details-text">
          <h2>
            <Name text={comparedRow.value.name} />
          </h2>
        </div>
        {compared.value && <Histogram sets={compared.value} titles={['1', '2']} />}
      </section>
    );
  if (name === undefined && ofBoth.value) return <OfBoth {...ofBoth.value} />;
  if (name === undefined)
    return inTable ? (
      <section class="details hint" style={{ height: `${state.detailsHeight.value + separatorHeight}px` }}>
        Nothing is selected.
      </section>
    ) : null;
  const text = state.names.value[name]!;
  const row = spread.value && spread.value.figures.count > 0 ? spread.value.figures : undefined;
  const inFlame = state.view.value === 'flame' && state.selectedNode.value !== undefined;
  return (
    <>
      <Separator
        label="Height of the details"
        value={state.detailsHeight.value}
        onChange={(height) => (state.detailsHeight.value = height)}
      />
      <section class="details" aria-label="Selection" style={{ height: `${state.detailsHeight.value}px` }}>
        <div class="details-text">
          <div class="details-head">
            <h2>
              <Name text={text} />
            </h2>
            <button title="All intervals of this name (l)" onClick={() => (state.list.value = 'name')}>
              All…
            </button>
            <button title="Show the longest one in the timeline" onClick={() => goToLongest(name)}>
              Longest
            </button>
            {(state.selectedInterval.value !== undefined || inFlame) && (
              <button title="Fit it into the view (f)" onClick={fitSelection}>
                Fit
              </button>
            )}
            <button title="Copy the name" onClick={() => copyText(text)}>
              Copy
            </button>
            <button
              class="close"
              title="Clear the selection (Escape)"
              onClick={() => state.select(undefined)}
            >
              ×
            </button>
          </div>
          <div id="details">{inFlame ? <NodeFigures /> : <IntervalFigures />}</div>
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
            <p class="hint">{spread.value ? 'No interval of this name lies in the range.' : 'Counting…'}</p>
          )}
        </div>
        {comparedRow.value
          ? compared.value && <Histogram sets={compared.value} titles={['1', '2']} />
          : durations.value && <Histogram sets={durations.value} />}
      </section>
    </>
  );
}

function IntervalFigures() {
  const id = state.selectedInterval.value;
  const profile = state.profile.value;
  if (id === undefined || !profile) return null;
  return (
    <>
      <Interval id={id} profile={profile} names={state.names.value} threadName={state.threadName} />
      <NoteEntry range={{ from: profile.begin[id]!, to: profile.end[id]! }} />
    </>
  );
}

interface IntervalProperties {
  id: number;
  profile: Profile;
  names: readonly string[];
  threadName: (thread: number) => string;
}

function Interval({ id, profile, names, threadName }: IntervalProperties) {
  const block = profile.block[id]!;
  const path = pathOf({ ...profile, names }, block);
  const [begin, end] = [profile.begin[id]!, profile.end[id]!];
  // The steps of both stamps.
  const unsure = stepAt(profile, begin) / 2 + stepAt(profile, end) / 2;
  return (
    <p class="interval" aria-live="polite">
      <b>{formatTime(duration(profile, id))}</b>
      {profile.open[id] === timesLost
        ? ', its own times are lost: around what ran inside'
        : profile.open[id]
          ? ' so far, never closed'
          : ''}
      <span class="hint">
        {' '}
        ± {formatTime(unsure)}, self {formatTime(selfTime(profile, id))}, from {formatTime(begin)} on{' '}
        {shortened(threadName(profile.blocks[block]!.thread), 60)}
        {path.length > 1 ? `, in ${shortenedPath(path.slice(0, -1), 6)}` : ''}
      </span>
    </p>
  );
}

/** What is selected in a chart of the second record, or of both: its name and figures. */
const ofBoth = computed(() => {
  const chart = currentChart();
  const id = state.secondInterval.value;
  const node = state.differenceNode.value;
  if (chart === state.difference && node !== undefined) {
    const { tree, names } = state.differenceTree.value!;
    const path = pathOfNode(tree, node).map((name) => names[name]!);
    const where = path.length > 1 ? `in ${shortenedPath(path.slice(0, -1), 6)}` : 'at the top';
    const text = [...differenceTexts(tree.nodes[node]!), where].join(', ');
    return {
      name: path[path.length - 1]!,
      figures: (
        <p class="interval" aria-live="polite">
          {text}
        </p>
      ),
    };
  }
  if (state.view.value !== 'compare' || state.comparison.value !== 'timelines' || id === undefined)
    return undefined;
  const { profile } = state.second.value!;
  const names = state.secondNames.value;
  const threadName = (thread: number) => profile.threads[thread]!.name;
  return {
    name: names[profile.blocks[profile.block[id]!]!.name]!,
    figures: <Interval id={id} profile={profile} names={names} threadName={threadName} />,
  };
});

function OfBoth({ name, figures }: NonNullable<typeof ofBoth.value>) {
  return (
    <section class="details" aria-label="Selection" style={{ height: `${state.detailsHeight.value}px` }}>
      <div class="details-text">
        <div class="details-head">
          <h2>
            <Name text={name} />
          </h2>
          <button title="Fit it into the view (f)" onClick={fitSelection}>
            Fit
          </button>
          <button title="Copy the name" onClick={() => copyText(name)}>
            Copy
          </button>
          <button class="close" title="Clear the selection (Escape)" onClick={() => state.select(undefined)}>
            ×
          </button>
        </div>
        <div id="details">{figures}</div>
      </div>
    </section>
  );
}

/** A box of the flame graph has figures of its own: those of one path. */
function NodeFigures() {
  const tree = state.callTree.value!;
  const index = state.selectedNode.value!;
  const node = tree.nodes[index]!;
  const path = pathOfNode(tree, index).map((name) => state.names.value[name]!);
  return (
    <p class="interval" aria-live="polite">
      <b>{formatTime(node.total)}</b>
      <span class="hint">
        {' '}
        {formatShare(node.total, tree.total)} of all, self {formatTime(node.self)},{' '}
        {node.count === 1 ? 'once' : `${formatCount(node.count)} times`}
        {path.length > 1 ? `, in ${shortenedPath(path.slice(0, -1), 6)}` : ', at the top'}
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
