import { useLayoutEffect, useRef } from 'preact/hooks';
import type { ComponentChildren } from 'preact';
import { licences } from 'virtual:licences';
import { formatCount, formatTime } from './format';
import * as state from './state';

export function Dialogs() {
  switch (state.dialog.value) {
    case 'threads':
      return <Threads />;
    case 'help':
      return <Help />;
    case 'problems':
      return <Problems />;
    default:
      return null;
  }
}

function Modal({ title, children }: { title: string; children: ComponentChildren }) {
  const dialog = useRef<HTMLDialogElement>(null);
  // Before the next key can come, which is to be the dialog's.
  useLayoutEffect(() => dialog.current!.showModal(), []);
  return (
    <dialog ref={dialog} aria-label={title} onClose={() => (state.dialog.value = undefined)}>
      <h2>
        {title}
        <button class="close" title="Close (Escape)" onClick={() => dialog.current!.close()}>
          ×
        </button>
      </h2>
      {children}
    </dialog>
  );
}

function Threads() {
  const profile = state.profile.value;
  if (!profile) return null;
  const setHidden = (thread: number, hide: boolean) => {
    const hidden = new Set(state.hidden.value);
    if (hide) hidden.add(thread);
    else hidden.delete(thread);
    state.hidden.value = hidden;
    if (hide && state.currentThread.value === thread) state.currentThread.value = undefined;
  };
  const rename = (thread: number, name: string) => {
    const renamed = new Map(state.renamed.value);
    if (name) renamed.set(thread, name);
    else renamed.delete(thread);
    state.renamed.value = renamed;
  };
  return (
    <Modal title="Threads">
      <p>
        <label>
          Order{' '}
          <select
            value={state.threadOrder.value}
            onChange={({ currentTarget }) =>
              (state.threadOrder.value = currentTarget.value as state.ThreadOrder)
            }
          >
            <option value="begin">first begin</option>
            <option value="activity">activity</option>
            <option value="id">thread id</option>
          </select>
        </label>{' '}
        <button onClick={() => (state.hidden.value = new Set())}>Show all</button>{' '}
        <button onClick={() => (state.hidden.value = new Set(profile.threads.keys()))}>Hide all</button>
      </p>
      <table>
        <thead>
          <tr>
            <th>Shown</th>
            <th>Name</th>
            <th>First begin</th>
            <th>Busy</th>
          </tr>
        </thead>
        <tbody>
          {state.orderedThreads.value.map((thread) => (
            <tr key={thread}>
              <td>
                <input
                  type="checkbox"
                  aria-label={`Show ${state.threadName(thread)}`}
                  checked={!state.hidden.value.has(thread)}
                  onChange={({ currentTarget }) => setHidden(thread, !currentTarget.checked)}
                />
              </td>
              <td>
                <input
                  aria-label={`Name of ${profile.threads[thread]!.name}`}
                  placeholder={profile.threads[thread]!.name}
                  value={state.renamed.value.get(thread) ?? ''}
                  onInput={({ currentTarget }) => rename(thread, currentTarget.value)}
                />
                {thread === state.mainThread.value && <small> probably the main thread</small>}
              </td>
              <td>{formatTime(profile.threads[thread]!.firstBegin)}</td>
              <td>{formatTime(profile.threads[thread]!.busy)}</td>
            </tr>
          ))}
        </tbody>
      </table>
      <p class="hint">
        Names and what is hidden are kept in this page only. Windows gives the id of a thread that has ended
        to a later one; the record cannot tell them apart, so one line may hold the blocks of both.
      </p>
    </Modal>
  );
}

function Problems() {
  const raw = state.opened.value?.raw;
  if (!raw) return null;
  return (
    <Modal title="What could not be read">
      <p>The rest is shown.</p>
      <ul class="problems">
        {raw.problems.map(({ where, what }) => (
          <li>
            <b>{where}</b> {what}
          </li>
        ))}
      </ul>
      {raw.moreProblems > 0 && <p>and {formatCount(raw.moreProblems)} more</p>}
    </Modal>
  );
}

const keys: [string, string][] = [
  ['+  −', 'zoom in and out; so do Ctrl and the wheel'],
  ['0', 'show all'],
  ['a d ← →', 'to the left and right'],
  ['w s ↑ ↓', 'up and down'],
  ['1 2 3 4', 'timeline, flame graph, statistics, compare'],
  ['n  p', 'next thread and the one before; past the last one, all threads'],
  ['t', 'threads: order, names, hide'],
  ['r', 'fold recursion'],
  ['v', 'figures only of what is in view'],
  ['f, Enter', 'fit the selected block; a double click does, too'],
  ['Shift + arrows', 'select the neighbour, the block around, the first block inside'],
  ['Ctrl + F', 'search; Enter and Shift + Enter go from hit to hit'],
  ['Ctrl + O', 'open a record'],
  ['Escape', 'clear the search, then the selection'],
];

function Help() {
  return (
    <Modal title="Help">
      <h3>Keys</h3>
      <dl class="keys">
        {keys.map(([key, what]) => (
          <div>
            <dt>{key}</dt>
            <dd>{what}</dd>
          </div>
        ))}
      </dl>
      <h3>Mouse</h3>
      <p>
        Drag to move, with Shift to choose a range; in the strip above the timeline drag to choose what is in
        view. Drop a record anywhere to open it, on the comparison to compare with it.
      </p>
      <h3>Figures</h3>
      <p>
        Limited to the visible range, statistics count the intervals that lie wholly in it; the flame graph
        shows the time in it. A block that was never closed is hatched and drawn to the end of the block
        around it: it is counted, and left out of mean, median, extremes and deviation. Time stamps have six
        digits: the status line tells what that means where you look.
      </p>
      <h3>Bundled software</h3>
      {licences.map(({ name, version, licence, text }) => (
        <details>
          <summary>
            {name} {version}, {licence}
          </summary>
          <pre>{text}</pre>
        </details>
      ))}
    </Modal>
  );
}
