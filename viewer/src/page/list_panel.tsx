import { IntervalList } from './interval_list';
import { Name } from './name';
import { NoteList } from './notes';
import { SpanView } from './span_view';
import * as state from './state';

const tabs: [state.List, string, string][] = [
  ['name', 'Intervals', 'All intervals of the selected name (l)'],
  ['hits', 'Hits', 'All hits of the search (h)'],
  ['span', 'Span', 'What lies in the measured span'],
  ['notes', 'Notes', 'What was written to times of the record'],
];

/** The list beside the view. */
export function ListPanel() {
  const list = state.list.value;
  if (!list) return null;
  const name = state.selectedName.value;
  return (
    <aside class="list" aria-label="List">
      <div class="list-head">
        <div class="views" role="tablist" aria-label="List">
          {tabs.map(([tab, title, hint]) => (
            <button
              role="tab"
              aria-selected={tab === list}
              title={hint}
              onClick={() => (state.list.value = tab)}
            >
              {title}
            </button>
          ))}
        </div>
        <span class="space" />
        <button class="close" title="Close the list (Escape)" onClick={() => (state.list.value = undefined)}>
          ×
        </button>
      </div>
      {list === 'name' && name !== undefined && (
        <p class="list-note">
          <Name text={state.names.value[name]!} />
        </p>
      )}
      {list === 'span' ? <SpanView /> : list === 'notes' ? <NoteList /> : <IntervalList />}
    </aside>
  );
}
