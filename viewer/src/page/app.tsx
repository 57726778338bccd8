import { selfTime } from '../record/profile';
import { ChartView } from './chart/chart_view';
import { Minimap } from './chart/minimap';
import { CompareView } from './compare_view';
import { Details } from './details';
import { Dialogs } from './dialogs';
import { formatCount, formatShare, formatTime } from './format';
import { LaneMenu } from './lane_menu';
import { ListPanel } from './list_panel';
import { toggleCollapsed } from './navigation';
import { openDropped } from './open';
import * as state from './state';
import { StatisticsView } from './statistics_view';
import { StatusLine } from './status_line';
import { Toolbar } from './toolbar';
import { TreeView } from './tree_view';

export function App() {
  return (
    <div class="page" onDragOver={(event) => event.preventDefault()} onDrop={onDrop}>
      <Toolbar />
      <Message text={state.refusal.value} role="alert" onClose={() => (state.refusal.value = undefined)} />
      <Message text={state.notice.value} role="status" onClose={() => (state.notice.value = undefined)} />
      <main>
        {state.opened.value ? <CurrentView /> : <Welcome />}
        {state.opened.value && <ListPanel />}
      </main>
      {state.opened.value && <Details />}
      {state.opened.value && <StatusLine />}
      {state.reading.value && <Reading />}
      <Dialogs />
    </div>
  );
}

interface MessageProperties {
  text: string | undefined;
  role: 'alert' | 'status';
  onClose: () => void;
}

function Message({ text, role, onClose }: MessageProperties) {
  if (!text) return null;
  return (
    <p class={role === 'alert' ? 'refusal' : 'refusal notice'} role={role}>
      {text}
      <button class="close" title="Close" onClick={onClose}>
        ×
      </button>
    </p>
  );
}

function onDrop(event: DragEvent): void {
  event.preventDefault();
  if (!event.dataTransfer) return;
  void openDropped(
    event.dataTransfer,
    state.opened.value && state.view.value === 'compare' ? 'second' : 'first',
  );
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
    case 'tree':
      return <TreeView />;
  }
}

function Timeline() {
  if (state.profile.value!.begin.length === 0)
    return <p class="empty">The record holds no blocks: nothing was begun while profiling was on.</p>;
  if (state.visibleThreads.value.length === 0)
    return <p class="empty">All threads are hidden. Press t to show some.</p>;
  const threadOf = (lane: number) => state.timelineModel.value!.lanes[lane]!.thread;
  return (
    <div class="timeline">
      <Minimap />
      <div class="lanes">
        <ChartView
          label="Timeline: a lane for each thread, blocks in time order. Shift and arrows select blocks."
          model={state.timelineModel}
          chartState={state.timeline}
          selected={state.selectedInterval}
          onSelect={(id) => (id === undefined ? state.select(undefined) : state.selectInterval(id))}
          describe={(id) => {
            const profile = state.profile.value!;
            return [
              `self ${formatTime(selfTime(profile, id))}`,
              `begins at ${formatTime(profile.begin[id]!)}`,
            ];
          }}
          onSpan={(span, chosen) => {
            state.span.value = span;
            // The list takes room from the chart, which must not change under the pointer.
            if (chosen) state.list.value = 'span';
          }}
          onLane={(lane) => toggleCollapsed(threadOf(lane))}
          onLaneMenu={(lane, x, y) => {
            state.laneMenu.value = { thread: threadOf(lane), x, y };
            state.menu.value = 'lane';
          }}
        />
        <LaneMenu />
      </div>
    </div>
  );
}

function FlameGraph() {
  const tree = state.callTree.value;
  if (!tree || tree.nodes.length === 0) return <p class="empty">No blocks to merge on what is shown.</p>;
  return (
    <ChartView
      label="Flame graph: blocks of the same path merged, the heaviest to the left. Shift and arrows select blocks."
      model={state.flameModel}
      chartState={state.flame}
      selected={state.selectedNode}
      onSelect={(node) => (node === undefined ? state.select(undefined) : state.selectNode(node))}
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
        wrote, usually <code>profiler.js</code>. It is read as text and never run: this is the way for records
        from others, and for large ones.
      </p>
      <p>
        A record named <code>profiler.js</code> beside this page is shown by itself;{' '}
        <code>?record=NAME.js</code> at the end of the address names another one. This way the browser runs
        the record as a script, and a name in it can hold more script: use it for records that you made
        yourself.
      </p>
      <p class="hint">
        The file stays on this machine: the page connects to nothing. Only names that you give to threads are
        kept, in this browser.
      </p>
    </div>
  );
}

function Reading() {
  const { title, part, large } = state.reading.value!;
  return (
    <div class="reading" role="status">
      <p>
        Reading {title}… {part === undefined ? <span class="busy" /> : <progress value={part} max={1} />}
      </p>
      {large && (
        <p>
          It is large, and as a script it takes the browser long and much memory. Drop the file here instead,
          or open it: as text it is read many times faster.
        </p>
      )}
    </div>
  );
}
