// The call tree, opened level by level: from the top down, or from each name up to who ran it.
import { computed } from '@preact/signals';
import { useState } from 'preact/hooks';
import { bottomUp, topDown } from '../record/call_tree';
import { formatCount, formatShare, formatTime } from './format';
import { Grid, type GridColumn } from './grid';
import { Name } from './name';
import { goToLongest } from './navigation';
import { matches } from './search';
import * as state from './state';
import { flatten, type FlatLine } from './tree_lines';

const roots = computed(() => {
  const tree = state.callTree.value;
  return tree ? (state.treeWay.value === 'down' ? topDown(tree) : bottomUp(tree)) : [];
});

const lines = computed(() => flatten(roots.value, state.openLines.value));

const columns: GridColumn[] = [
  { id: 'name', title: 'Name' },
  { id: 'total', title: 'Total', hint: 'Time inside, with what it calls' },
  { id: 'share', title: 'Of all' },
  { id: 'self', title: 'Self', hint: 'Time inside, without the blocks in it' },
  { id: 'count', title: 'Count' },
];

export function TreeView() {
  const [selected, setSelected] = useState<string | undefined>(undefined);
  const rows = lines.value;
  const all = state.callTree.value?.total ?? 0;
  const names = state.names.value;
  const found = matches.value;
  const toggle = ({ key, line }: FlatLine, open?: boolean) => {
    if (line.isLeaf) return;
    const isOpen = state.openLines.value.has(key);
    if (open === isOpen) return;
    state.openLines.value = isOpen
      ? state.without(state.openLines.value, key)
      : new Set([...state.openLines.value, key]);
  };
  const select = (row: FlatLine) => {
    setSelected(row.key);
    state.select(row.line.name);
  };
  const texts = ({ line }: FlatLine) => [
    formatTime(line.total),
    formatShare(line.total, all),
    formatTime(line.self),
    formatCount(line.count),
  ];
  return (
    <div class="compare">
      <p class="bar">
        <span class="views" role="tablist" aria-label="Direction">
          {(['down', 'up'] as const).map((way) => (
            <button
              role="tab"
              aria-selected={state.treeWay.value === way}
              onClick={() => {
                state.treeWay.value = way;
                state.openLines.value = new Set();
              }}
            >
              {way === 'down' ? 'From the top' : 'From the bottom'}
            </button>
          ))}
        </span>
        <span class="hint">
          {state.treeWay.value === 'down'
            ? 'What ran inside what; → opens a line, ← closes it.'
            : 'Each name, and below it who ran it, with the part of its time that belongs to each.'}
        </span>
      </p>
      <Grid
        label="Call tree"
        columns={columns}
        sorted={{ id: state.treeWay.value === 'down' ? 'total' : 'self', desc: true }}
        onSort={() => {}}
        count={rows.length}
        cells={(index) => {
          const row = rows[index]!;
          const { line, level } = row;
          return [
            <span class={found && !found[line.name] ? 'tree-name hint' : 'tree-name'}>
              <span style={{ width: `${Math.min(level, 40) * 14}px`, flex: 'none' }} />
              <button
                class="tree-toggle"
                tabIndex={-1}
                aria-label={
                  line.isLeaf ? 'Nothing below' : state.openLines.value.has(row.key) ? 'Close' : 'Open'
                }
                disabled={line.isLeaf}
                onClick={() => toggle(row)}
              >
                {line.isLeaf ? '' : state.openLines.value.has(row.key) ? '▾' : '▸'}
              </button>
              <Name text={names[line.name]!} />
            </span>,
            ...texts(row),
          ];
        }}
        copy={(index) => [names[rows[index]!.line.name]!, ...texts(rows[index]!)]}
        selected={rows.findIndex(({ key }) => key === selected)}
        onSelect={(index) => select(rows[index]!)}
        onOpen={(index) => goToLongest(rows[index]!.line.name)}
        onKey={(key, index) => {
          if (key !== 'ArrowRight' && key !== 'ArrowLeft') return false;
          toggle(rows[index]!, key === 'ArrowRight');
          return true;
        }}
        empty="No blocks on what is shown."
      />
    </div>
  );
}
