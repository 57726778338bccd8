import { change, type Compared } from '../record/compare';
import type { Figures } from '../record/statistics';
import { formatCount, formatRatio, formatTime, oneLine } from './format';
import { openFile } from './open';
import * as state from './state';
import { Table, type Column } from './table';
import { FileButton } from './toolbar';

type Figure = 'count' | 'total' | 'mean';

const pathText = (row: Compared) => row.path.map(oneLine).join(' › ');
const shown = (figure: Figure, value: number | undefined) =>
  value === undefined ? '–' : figure === 'count' ? formatCount(value) : formatTime(value);

function signed(figure: Figure, value: number): string {
  if (Number.isNaN(value)) return '–';
  return (value > 0 ? '+' : '') + shown(figure, value);
}

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
      show: (row) => shown(figure, of(row.before)),
    },
    {
      id: `${figure}-after`,
      title: `${title} 2`,
      value: (row) => of(row.after),
      show: (row) => shown(figure, of(row.after)),
    },
    {
      id: `${figure}-difference`,
      title: '2 − 1',
      value: (row) => changeOf(row).difference,
      show: (row) => signed(figure, changeOf(row).difference),
    },
    {
      id: `${figure}-ratio`,
      title: '2 ÷ 1',
      value: (row) => changeOf(row).ratio,
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

const columns: Column<Compared>[] = [
  {
    id: 'path',
    title: 'Block',
    value: pathText,
    show: (row) => (
      <span title={pathText(row)}>
        <Mark row={row} />
        {pathText(row)}
      </span>
    ),
  },
  ...columnsOf('count', 'Count'),
  ...columnsOf('total', 'Total'),
  ...columnsOf('mean', 'Mean'),
];

export function CompareView() {
  const other = state.second.value;
  return (
    <div class="compare">
      <p class="bar">
        <b>1</b> {state.opened.value?.title}
        <b>2</b> {other?.title ?? 'no record yet'}
        <FileButton
          id="open-second"
          label={other ? 'Another second record…' : 'Open the second record…'}
          hint="The record to compare with"
          onFile={(file) => void openFile(file, 'second')}
        />
      </p>
      {other ? (
        <Table
          label="Comparison of two records"
          rows={state.compared.value}
          columns={columns}
          sortedBy="total-difference"
          textOf={pathText}
          filter={state.search.value}
          isSelected={(row) => row === selectedRow()}
          onSelect={(row) => {
            const name = state.names.value.indexOf(row.path[row.path.length - 1]!);
            chosen = row;
            state.select(name < 0 ? undefined : name, undefined);
          }}
          empty="No block holds what is searched for."
        />
      ) : (
        <p class="empty">
          Compare this record with another one, before a change and after it: blocks with the same path of
          names stand in one line. Open the second record, or drop it here.
        </p>
      )}
    </div>
  );
}

let chosen: Compared | undefined;

function selectedRow(): Compared | undefined {
  return state.selectedName.value === undefined ? undefined : chosen;
}
