import { duration, stepAt } from '../record/profile';
import { EncodingChoice, PaletteChoice, ThemeChoice } from './choices';
import { formatCount, formatSpan, formatTime } from './format';
import * as state from './state';

export function StatusLine() {
  const { raw, intervals, source } = state.opened.value!;
  const range = state.timeline.range.value;
  const profile = state.profile.value!;
  const onTimeline = state.view.value === 'timeline';
  const id = state.timeline.hovered.value ?? state.selectedInterval.value;
  const point = id !== undefined && onTimeline ? profile.begin[id]! : range.to;
  const problems = raw.problems.length + raw.moreProblems;
  return (
    <footer class="status">
      <span>
        {formatCount(intervals)} intervals, {profile.threads.length}{' '}
        {profile.threads.length === 1 ? 'thread' : 'threads'}
      </span>
      {onTimeline && <span>{formatSpan(range)}</span>}
      {onTimeline && state.span.value && (
        <span class="measured">measured: {formatSpan(state.span.value)}</span>
      )}
      <span title="Time stamps have six digits">
        resolution at {formatTime(point)}:{' '}
        {point > 0 && stepAt(profile, point) > 0 ? formatTime(stepAt(profile, point)) : 'exact'}
      </span>
      {id !== undefined && onTimeline && duration(profile, id) === 0 && (
        <span>no time passed between its stamps</span>
      )}
      <span class="space" />
      {state.notes.value.length > 0 && (
        <button onClick={() => (state.list.value = 'notes')}>
          {state.notes.value.length === 1 ? '1 note' : `${state.notes.value.length} notes`}
        </button>
      )}
      {source.kind === 'script' && (
        <span title="The browser ran the record as a script and read the escapes in it: a name with a backslash may differ. Open the file to read it as text.">
          opened as a script
        </span>
      )}
      {problems > 0 && (
        <button class="warning" onClick={() => (state.dialog.value = 'problems')}>
          {problems === 1 ? '1 problem in the file' : `${formatCount(problems)} problems in the file`}
        </button>
      )}
      <EncodingChoice />
      <PaletteChoice />
      <ThemeChoice />
    </footer>
  );
}
