// What lies in the span that was measured.
import { computed, effect, signal } from '@preact/signals';
import { measure, type Measured } from '../record/measure';
import type { Range } from '../record/statistics';
import { copyText } from './clipboard';
import { formatCount, formatSpan, formatTime } from './format';
import { Name } from './name';
import { NoteEntry } from './notes';
import * as state from './state';
import { Table, type Column } from './table';

/** The span a moment after it was changed: to look into it takes time. */
const resting = signal<Range | undefined>(undefined);
let timer: ReturnType<typeof setTimeout> | undefined;
effect(() => {
  const span = state.span.value;
  clearTimeout(timer);
  timer = setTimeout(() => (resting.value = span), 100);
});

const rows = computed(() => {
  const profile = state.profile.value;
  const { threads } = state.selection.value;
  return profile && resting.value && state.list.value === 'span'
    ? measure(profile, resting.value, threads)
    : [];
});

const columns = computed((): Column<Measured>[] => {
  const names = state.names.value;
  const nameOf = ({ name }: Measured) => names[name]!;
  return [
    { id: 'name', title: 'Name', value: nameOf, text: nameOf, show: (row) => <Name text={nameOf(row)} /> },
    {
      id: 'self',
      title: 'Self',
      hint: 'Time in the span, without the blocks inside',
      value: ({ self }) => self,
      text: ({ self }) => formatTime(self),
    },
    {
      id: 'total',
      title: 'Total',
      hint: 'Time in the span, with the blocks inside',
      value: ({ total }) => total,
      text: ({ total }) => formatTime(total),
    },
    {
      id: 'count',
      title: 'Count',
      hint: 'Intervals that lie in the span, at least in part',
      value: ({ count }) => count,
      text: ({ count }) => formatCount(count),
    },
  ];
});

export function SpanView() {
  const span = state.span.value;
  if (!span) return <p class="empty">Drag over the timeline with Shift to measure a span.</p>;
  return (
    <>
      <div class="list-note">
        <p class="span-length" aria-live="polite">
          <b>{formatTime(span.to - span.from)}</b>{' '}
          <span class="hint">{formatSpan(span).replace(/:.*/, '')}</span>
        </p>
        <p class="buttons">
          <button title="Zoom to the span (z)" onClick={() => state.timeline.show(span.from, span.to)}>
            Zoom
          </button>
          <button onClick={() => copyText(formatSpan(span))}>Copy</button>
        </p>
        <NoteEntry range={span} />
      </div>
      <Table
        label="What lies in the span"
        rows={rows.value}
        columns={columns.value}
        sortedBy="self"
        isSelected={({ name }) => name === state.selectedName.value}
        onSelect={({ name }) => state.select(name)}
        empty="No block on the threads shown."
      />
    </>
  );
}
