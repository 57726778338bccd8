import { computed } from '@preact/signals';
import { duration, resolutionAt, selfTime } from '../record/profile';
import { ChartView } from './chart/chart_view';
import { Minimap } from './chart/minimap';
import { CompareView } from './compare_view';
import { Details } from './details';
import { Dialogs } from './dialogs';
import { formatCount, formatShare, formatTime } from './format';
import { openFile } from './open';
import * as state from './state';
import { StatisticsView } from './statistics_view';
import { Toolbar } from './toolbar';

export function App() {
  return (
    <div class="page" onDragOver={(event) => event.preventDefault()} onDrop={onDrop}>
      <Toolbar />
      {state.refusal.value && (
        <p class="refusal" role="alert">
          {state.refusal.value}
          <button class="close" title="Close" onClick={() => (state.refusal.value = undefined)}>
            ×
          </button>
        </p>
      )}
      <main>{state.opened.value ? <CurrentView /> : <Welcome />}</main>
      {state.opened.value && <Details />}
      {state.opened.value && <StatusLine />}
      {state.reading.value && <Reading />}
      <Dialogs />
    </div>
  );
}

function onDrop(event: DragEvent): void {
  event.preventDefault();
  const file = event.dataTransfer?.files[0];
  if (file) void openFile(file, state.opened.value && state.view.value === 'compare' ? 'second' : 'first');
}

function CurrentView() {
  switch (state.view.value) {
    case 'timeline':
      return <Timeline />;
    case 'flame':
      return <FlameGraph />;
    case 'statistics':
      return <StatisticsView />;
    case 'compare':
      return <CompareView />;
  }
}

function Timeline() {
  if (state.profile.value!.begin.length === 0)
    return <p class="empty">The record holds no blocks: nothing was begun while profiling was on.</p>;
  if (state.visibleThreads.value.length === 0)
    return <p class="empty">All threads are hidden. Press t to show some.</p>;
  return (
    <div class="timeline">
      <Minimap />
      <ChartView
        label="Timeline: a lane for each thread, blocks in time order"
        model={state.timelineModel}
        chartState={state.timeline}
        selected={state.selectedInterval}
        onSelect={(id) => (id === undefined ? state.select(undefined, undefined) : state.selectInterval(id))}
        describe={(id) => {
          const profile = state.profile.value!;
          return [`self ${formatTime(selfTime(profile, id))}`, `begins at ${formatTime(profile.begin[id]!)}`];
        }}
      />
    </div>
  );
}

/** The box of the selected name that is hovered or found first; a name may be in many places. */
const selectedNode = computed(() => {
  const name = state.selectedName.value;
  if (name === undefined) return undefined;
  const hovered = state.flame.hovered.peek();
  const nodes = state.callTree.value?.nodes ?? [];
  if (hovered !== undefined && nodes[hovered]?.name === name) return hovered;
  const first = nodes.findIndex((node) => node.name === name);
  return first < 0 ? undefined : first;
});

function FlameGraph() {
  const tree = state.callTree.value;
  if (!tree || tree.nodes.length === 0) return <p class="empty">No blocks to merge on what is shown.</p>;
  return (
    <ChartView
      label="Flame graph: blocks of the same path merged, the heaviest to the left"
      model={state.flameModel}
      chartState={state.flame}
      selected={selectedNode}
      onSelect={(node) => state.select(node === undefined ? undefined : tree.nodes[node]!.name, undefined)}
      describe={(index) => {
        const node = tree.nodes[index]!;
        return [
          `${formatShare(node.total, tree.total)} of all, self ${formatTime(node.self)}`,
          node.count === 1 ? 'once' : `${formatCount(node.count)} times`,
        ];
      }}
    />
  );
}

function Welcome() {
  return (
    <div class="welcome">
      <h1>Profile viewer</h1>
      <p>
        Drop a record here, or open it: the file that <code>kex_stop_profiling</code> or the end of a program
        wrote, usually <code>profiler.js</code>.
      </p>
      <p>
        A record named <code>profiler.js</code> beside this page is shown by itself;{' '}
        <code>?record=NAME.js</code> at the end of the address names another one.
      </p>
      <p class="hint">The file stays on this machine: the page cannot send anything.</p>
    </div>
  );
}

function Reading() {
  const { title, part } = state.reading.value!;
  return (
    <div class="reading" role="status">
      Reading {title}… <progress value={part} max={1} />
    </div>
  );
}

function StatusLine() {
  const { raw, asScript } = state.opened.value!;
  const { from, to } = state.timeline.range.value;
  const profile = state.profile.value!;
  const id = state.timeline.hovered.value ?? state.selectedInterval.value;
  const point = id !== undefined && state.view.value === 'timeline' ? profile.begin[id]! : to;
  const problems = raw.problems.length + raw.moreProblems;
  return (
    <footer class="status">
      <span>
        {formatCount(profile.begin.length)} intervals, {profile.threads.length}{' '}
        {profile.threads.length === 1 ? 'thread' : 'threads'}
      </span>
      {state.view.value === 'timeline' && (
        <span>
          {formatTime(from)} to {formatTime(to)}: {formatTime(to - from)}
        </span>
      )}
      <span title="Time stamps have six digits">
        resolution at {formatTime(point)}: {point > 0 ? formatTime(resolutionAt(point)) : 'exact'}
      </span>
      {id !== undefined && state.view.value === 'timeline' && duration(profile, id) === 0 && (
        <span>no time passed between its stamps</span>
      )}
      <span class="space" />
      {asScript && (
        <span title="The browser reads the escapes in a script: a name with a backslash may differ. Open the file to read it as text.">
          opened as a script
        </span>
      )}
      {problems > 0 && (
        <button class="warning" onClick={() => (state.dialog.value = 'problems')}>
          {problems === 1 ? '1 problem in the file' : `${formatCount(problems)} problems in the file`}
        </button>
      )}
    </footer>
  );
}
