import { computed } from '@preact/signals';
import { useState } from 'preact/hooks';
import { change, type Compared } from '../record/compare';
import { selfTime, type Profile } from '../record/profile';
import type { Figures } from '../record/statistics';
import { ChartView } from './chart/chart_view';
import { FileButton } from './file_button';
import { differenceTexts } from './difference_texts';
import { formatCount, formatRatio, formatTime } from './format';
import { Path } from './name';
import { openFile } from './open';
import { fault, query } from './search';
import * as state from './state';
import { Table, type Column } from './table';

type Figure = 'count' | 'total' | 'self' | 'mean' | 'median';

const pathText = (row: Compared) => row.path.join(' › ');
const shown = (figure: Figure, value: number | undefined) =>
  value === undefined ? '–' : figure === 'count' ? formatCount(value) : formatTime(value);

const signed = (figure: Figure, value: number) =>
  Number.isNaN(value) ? '–' : (value > 0 ? '+' : '') + shown(figure, value);

/** Four columns for a figure: before, after, their difference and ratio. */
function columnsOf(figure: Figure, title: string): Column<Compared>[] {
  const of = (figures: Figures | undefined) => figures?.[figure];
  const changeOf = (row: Compared) => change(of(row.before), of(row.after));
  const tone = (row: Compared) => {
    const { ratio } = changeOf(row);
    return ratio > 1.05 ? 'worse' : ratio < 0.95 ? 'better' : '';
  };
  return [
    {
      id: `${figure}-before`,
      title: `${title} 1`,
      value: (row) => of(row.before),
      text: (row) => shown(figure, of(row.before)),
    },
    {
      id: `${figure}-after`,
      title: `${title} 2`,
      value: (row) => of(row.after),
      text: (row) => shown(figure, of(row.after)),
    },
    {
      id: `${figure}-difference`,
      title: '2 − 1',
      value: (row) => changeOf(row).difference,
      text: (row) => signed(figure, changeOf(row).difference),
    },
    {
      id: `${figure}-ratio`,
      title: '2 ÷ 1',
      value: (row) => changeOf(row).ratio,
      text: (row) => formatRatio(changeOf(row).ratio),
      show: (row) => (
        <span class={figure === 'count' ? '' : tone(row)}>{formatRatio(changeOf(row).ratio)}</span>
      ),
    },
  ];
}

function Mark({ row }: { row: Compared }) {
  if (row.before && row.after) return null;
  return (
    <>
      <em class="mark">only in {row.before ? 1 : 2}</em>{' '}
    </>
  );
}

const path: Column<Compared> = {
  id: 'path',
  title: 'Block',
  value: pathText,
  text: pathText,
  show: (row) => (
    <>
      <Mark row={row} />
      <Path names={row.shortPath} />
    </>
  ),
};

/** More columns than these could not be seen at once. */
const sets = {
  totals: [
    path,
    ...columnsOf('count', 'Count'),
    ...columnsOf('total', 'Total'),
    ...columnsOf('mean', 'Mean'),
  ],
  averages: [
    path,
    ...columnsOf('self', 'Self'),
    ...columnsOf('mean', 'Mean'),
    ...columnsOf('median', 'Median'),
  ],
};

/** Those with a name on their path that is searched for. */
const rows = computed(() => {
  const wanted = query.value?.name;
  if (fault.value) return [];
  return wanted ? state.compared.value.filter(({ path }) => path.some(wanted)) : state.compared.value;
});

const views: [state.Comparison, string][] = [
  ['table', 'Table'],
  ['timelines', 'Timelines'],
  ['difference', 'Difference'],
];

export function CompareView() {
  const other = state.second.value;
  return (
    <div class="compare">
      <p class="bar">
        <b class="first-set">1</b> {state.opened.value?.title}
        <b class="second-set">2</b> {other?.title ?? 'no record yet'}
        <FileButton
          id="open-second"
          label={other ? 'Another second record…' : 'Open the second record…'}
          hint="The record to compare with"
          onFile={(file) => void openFile(file, { as: 'second' })}
        />
        {other && (
          <span class="views" role="tablist" aria-label="Comparison">
            {views.map(([view, title]) => (
              <button
                role="tab"
                aria-selected={state.comparison.value === view}
                onClick={() => (state.comparison.value = view)}
              >
                {title}
              </button>
            ))}
          </span>
        )}
      </p>
      {other ? (
        <Comparison />
      ) : (
        <p class="empty">
          Compare this record with another one, before a change and after it: blocks with the same path of
          names stand in one line. Open the second record, or drop it here.
        </p>
      )}
    </div>
  );
}

function Comparison() {
  switch (state.comparison.value) {
    case 'table':
      return <ComparedTable />;
    case 'timelines':
      return <Timelines />;
    case 'difference':
      return <Difference />;
  }
}

function ComparedTable() {
  const [figures, setFigures] = useState<keyof typeof sets>('totals');
  return (
    <>
      <p class="bar">
        <label>
          Figures{' '}
          <select
            value={figures}
            onChange={({ currentTarget }) => setFigures(currentTarget.value as keyof typeof sets)}
          >
            <option value="totals">count, total, mean</option>
            <option value="averages">self, mean, median</option>
          </select>
        </label>
      </p>
      <Table
        key={figures}
        label="Comparison of two records"
        rows={rows.value}
        columns={sets[figures]}
        sortedBy={figures === 'totals' ? 'total-difference' : 'self-difference'}
        isSelected={(row) => row === state.selectedComparison.value}
        onSelect={(row) => {
          const name = state.names.value.indexOf(row.name);
          state.select(name < 0 ? undefined : name);
          state.selectedComparison.value = row;
        }}
        empty="No block holds what is searched for."
      />
    </>
  );
}

/** Both records above each other, on one axis. */
function Timelines() {
  const describe = (profile: Profile) => (id: number) => [
    `self ${formatTime(selfTime(profile, id))}`,
    `begins at ${formatTime(profile.begin[id]!)}`,
  ];
  const other = state.second.value!.profile;
  return (
    <>
      <ChartView
        label="Timeline of the first record. Shift and arrows select blocks."
        onFocus={() => (state.inSecond.value = false)}
        model={state.timelineModel}
        chartState={state.timeline}
        selected={state.selectedInterval}
        onSelect={(id) => (id === undefined ? state.select(undefined) : state.selectInterval(id))}
        describe={describe(state.profile.value!)}
      />
      <div class="divider" />
      <ChartView
        label="Timeline of the second record. Shift and arrows select blocks."
        onFocus={() => (state.inSecond.value = true)}
        model={state.secondModel}
        chartState={state.secondTimeline}
        selected={state.secondInterval}
        onSelect={(id) => (id === undefined ? state.select(undefined) : state.selectInSecond(id))}
        describe={describe(other)}
        foreign
      />
    </>
  );
}

/** One flame graph of both: what took more is red, what took less is blue. */
function Difference() {
  return (
    <>
      <p class="bar hint">
        As wide as the longer of the two. Red: the second record took more; blue: less; grey: within a
        fiftieth.
      </p>
      <ChartView
        label="Flame graph of the difference. Shift and arrows select blocks."
        model={state.differenceModel}
        chartState={state.difference}
        selected={state.differenceNode}
        onSelect={(box) => (box === undefined ? state.select(undefined) : state.selectDifference(box))}
        describe={(box) => differenceTexts(state.differenceTree.value!.tree.nodes[box]!)}
        foreign
      />
    </>
  );
}
