// What the user writes to times of the record. Notes are kept with the view: in its file or link.
import type { Range } from '../record/statistics';
import { formatSpan } from './format';
import * as state from './state';

const sameRange = (a: Range, b: Range) => a.from === b.from && a.to === b.to;

function write(range: Range, text: string): void {
  const others = state.notes.value.filter((note) => !sameRange(note, range));
  state.notes.value = (text ? [...others, { ...range, text }] : others).sort((a, b) => a.from - b.from);
}

/** A line to write a note to a time in. */
export function NoteEntry({ range }: { range: Range }) {
  const note = state.notes.value.find((candidate) => sameRange(candidate, range));
  return (
    <input
      class="note"
      aria-label="Note"
      placeholder="Note…"
      value={note?.text ?? ''}
      onChange={({ currentTarget }) => write(range, currentTarget.value.trim())}
    />
  );
}

export function NoteList() {
  const notes = state.notes.value;
  if (notes.length === 0)
    return (
      <p class="empty">
        No notes. Select a block or measure a span to write one; a file of the view keeps them.
      </p>
    );
  return (
    <ul class="notes">
      {notes.map((note) => (
        <li>
          <button
            title="Show it in the timeline"
            onClick={() => {
              state.view.value = 'timeline';
              state.timeline.fit(note.from, note.to);
            }}
          >
            {note.text}
            <small>{formatSpan(note)}</small>
          </button>
          <button class="close" title="Delete the note" onClick={() => write(note, '')}>
            ×
          </button>
        </li>
      ))}
    </ul>
  );
}
