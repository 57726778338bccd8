import { computed } from '@preact/signals';
import {
  calleesOf,
  callersOf,
  countingNames,
  type NameRow,
  type Relative,
  type Selection,
} from '../record/statistics';
import type { Profile } from '../record/profile';
import { formatCount, formatShare, formatTime } from './format';
import { Name } from './name';
import { goToLongest } from './navigation';
import { matches } from './search';
import { slicedSignal } from './sliced';
import * as state from './state';
import { Table, type Column } from './table';

const time = (id: keyof NameRow & string, title: string, hint: string): Column<NameRow> => ({
  id,
  title,
  hint,
  value: (row) => row[id],
  text: (row) => formatTime(row[id]),
});

const figures: Column<NameRow>[] = [
  {
    id: 'count',
    title: 'Count',
    hint: 'How often it was open',
    value: (row) => row.count,
    text: (row) => formatCount(row.count),
    show: (row) => (
      <>
        {formatCount(row.count)}
        {row.open > 0 && <small title="never closed; left out of the averages"> {row.open} open</small>}
      </>
    ),
  },
  time('total', 'Total', 'Time inside, with what it calls'),
  time('self', 'Self', 'Time inside, without the blocks in it'),
  time('mean', 'Mean', 'Of the closed intervals'),
  time('median', 'Median', 'Half of the closed intervals are shorter'),
  time('min', 'Min', 'The shortest closed interval'),
  time('max', 'Max', 'The longest closed interval'),
  time('deviation', 'Deviation', 'Standard deviation of the closed intervals'),
];

const columns = computed((): Column<NameRow>[] => {
  const names = state.names.value;
  const nameOf = (row: NameRow) => names[row.name]!;
  return [
    { id: 'name', title: 'Name', value: nameOf, text: nameOf, show: (row) => <Name text={nameOf(row)} /> },
    ...figures,
  ];
});

const isSeen = () => state.view.value === 'statistics';

/** Of all names; undefined while they are being counted. */
const statistics = slicedSignal(() => {
  const { profile, selection } = state;
  return profile.value && countingNames(profile.value, selection.value);
}, isSeen);

const rows = computed(() => {
  const all = statistics.value ?? [];
  const found = matches.value;
  return found ? all.filter(({ name }) => found[name]) : all;
});

/** Of the selected name; undefined while they are being looked for. */
const around = slicedSignal(() => {
  const { profile, selectedName, selection } = state;
  return profile.value && selectedName.value !== undefined
    ? callersAndCallees(profile.value, selectedName.value, selection.value)
    : undefined;
}, isSeen);

function* callersAndCallees(profile: Profile, name: number, selection: Selection) {
  return {
    callers: yield* callersOf(profile, name, selection),
    callees: yield* calleesOf(profile, name, selection),
  };
}

export function StatisticsView() {
  const nothing = state.search.value
    ? 'No name holds what is searched for.'
    : 'No interval lies in the range.';
  return (
    <div class="statistics">
      <Table
        label="Statistics by name"
        rows={rows.value}
        columns={columns.value}
        sortedBy="self"
        isSelected={(row) => row.name === state.selectedName.value}
        onSelect={(row) => state.select(row.name)}
        onOpen={(row) => goToLongest(row.name)}
        empty={statistics.value ? nothing : 'Counting…'}
      />
      <Sandwich />
    </div>
  );
}

/** Who calls the selected name, and what it calls. */
function Sandwich() {
  const name = state.selectedName.value;
  if (name === undefined)
    return <aside class="sandwich hint">Select a name to see who calls it and what it calls.</aside>;
  if (!around.value) return <aside class="sandwich hint">Counting…</aside>;
  return (
    <aside class="sandwich">
      <Relatives title="Callers" rows={around.value.callers} />
      <h3 class="middle">
        <Name text={state.names.value[name]!} />
      </h3>
      <Relatives title="Callees" rows={around.value.callees} />
    </aside>
  );
}

/** More would not be read. */
const mostRelatives = 200;

function Relatives({ title, rows }: { title: string; rows: Relative[] }) {
  const whole = rows.reduce((sum, row) => sum + row.total, 0);
  return (
    <section aria-label={title}>
      <h3>{title}</h3>
      {rows.length === 0 && <p class="hint">none</p>}
      <ul>
        {rows.slice(0, mostRelatives).map((row) => (
          <li>
            {row.name < 0 ? (
              <span class="hint">top of the thread</span>
            ) : (
              <button onClick={() => state.select(row.name)}>
                <Name text={state.names.value[row.name]!} />
              </button>
            )}
            <span class="number">{formatTime(row.total)}</span>
            <span class="number">{formatShare(row.total, whole)}</span>
            <span class="number">{formatCount(row.count)}</span>
          </li>
        ))}
      </ul>
      {rows.length > mostRelatives && <p class="hint">and {formatCount(rows.length - mostRelatives)} more</p>}
    </section>
  );
}
