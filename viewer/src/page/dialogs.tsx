import { useLayoutEffect, useRef } from 'preact/hooks';
import type { ComponentChildren } from 'preact';
import { licences } from 'virtual:licences';
import { copyText } from './clipboard';
import { formatCount, formatTime } from './format';
import { linkOfView } from './kept_view';
import { collapseAll, hideThread, moveThread, toggleCollapsed, togglePinned } from './navigation';
import * as state from './state';

export function Dialogs() {
  switch (state.dialog.value) {
    case 'threads':
      return <Threads />;
    case 'help':
      return <Help />;
    case 'problems':
      return <Problems />;
    case 'share':
      return <Share />;
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
    if (hide) hideThread(thread);
    else state.hidden.value = state.without(state.hidden.value, thread);
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
            {state.ownOrder.value.length > 0 && <option value="own">my own</option>}
          </select>
        </label>{' '}
        <button onClick={() => (state.hidden.value = new Set())}>Show all</button>{' '}
        <button onClick={() => (state.hidden.value = new Set(profile.threads.keys()))}>Hide all</button>{' '}
        <button onClick={() => collapseAll(true)}>Fold all</button>{' '}
        <button onClick={() => collapseAll(false)}>Unfold all</button>
      </p>
      <table>
        <thead>
          <tr>
            <th>Shown</th>
            <th>Name</th>
            <th>First begin</th>
            <th>Busy</th>
            <th>Lane</th>
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
              <td>
                <LaneButtons thread={thread} />
              </td>
            </tr>
          ))}
        </tbody>
      </table>
      <p class="hint">
        The browser keeps the names that you give for this record, and nothing else. Windows gives the id of a
        thread that has ended to a later one; the record cannot tell them apart, so one line may hold the
        blocks of both.
      </p>
    </Modal>
  );
}

function LaneButtons({ thread }: { thread: number }) {
  const name = state.threadName(thread);
  const shown = state.visibleThreads.value;
  const place = shown.indexOf(thread);
  return (
    <span class="views">
      <button
        aria-label={`Fold ${name}`}
        title="Show its first row only (c)"
        aria-pressed={state.collapsed.value.has(thread)}
        onClick={() => toggleCollapsed(thread)}
      >
        ▸
      </button>
      <button
        aria-label={`Pin ${name}`}
        title="Keep it on top (k)"
        aria-pressed={state.pinned.value.has(thread)}
        onClick={() => togglePinned(thread)}
      >
        ⚲
      </button>
      <button aria-label={`Move ${name} up`} disabled={place <= 0} onClick={() => moveThread(thread, -1)}>
        ↑
      </button>
      <button
        aria-label={`Move ${name} down`}
        disabled={place < 0 || place === shown.length - 1}
        onClick={() => moveThread(thread, 1)}
      >
        ↓
      </button>
    </span>
  );
}

function Share() {
  const link = linkOfView();
  return (
    <Modal title="Link to the view">
      <p>
        The address of this page with the view in it: what is in view, selected and measured, lanes and notes.
        It shows them with the record that lies beside the page.
      </p>
      <p class="buttons">
        <input
          class="note"
          aria-label="Link"
          readOnly
          value={link}
          onFocus={({ currentTarget }) => currentTarget.select()}
        />
        <button onClick={() => copyText(link)}>Copy</button>
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
  ['+  −', 'zoom in and out; so do Ctrl and the wheel, and two fingers'],
  ['0', 'show all'],
  ['a d ← →', 'to the left and right'],
  ['w s ↑ ↓', 'up and down'],
  ['1 2 3 4 5', 'timeline, flame graph, statistics, compare, call tree'],
  ['Shift + arrows', 'select the neighbour, the block around, the first block inside'],
  ['f, Enter', 'fit the selected block; a double click does, too'],
  ['Backspace', 'back to what was in view before; so do Alt + ← and the mouse'],
  ['Alt + →', 'forward again'],
  ['l  h', 'list of all intervals of the selected name, of all hits'],
  ['n  p', 'next thread and the one before; past the last one, all threads'],
  ['c  k', 'fold, pin the lane of that thread or of the selected block'],
  ['t', 'threads: order, names, hide'],
  ['r', 'fold recursion'],
  ['v', 'figures only of what is in view'],
  ['z', 'zoom to the measured span'],
  ['Ctrl + F', 'search; Enter and Shift + Enter go from hit to hit'],
  ['Ctrl + C', 'in a table: copy the selected row'],
  ['Ctrl + O', 'open a record'],
  ['u', 'read the file again and keep the view'],
  ['Escape', 'leave the search, the span, the list, then the selection'],
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
        Drag to move, with Shift to measure a span: how long it is, and what lies in it. In the strip above
        the timeline drag to choose what is in view. A click on a lane's title folds it, the other button has
        more. Drop a record anywhere to open it, on the comparison to compare with it.
      </p>
      <h3>Search</h3>
      <p>
        Part of a name; <code>/read (file|page)/i</code>, a regular expression; <code>{'> 5 ms'}</code>,{' '}
        <code>{'<= 20 us'}</code>, a length; <code>thread:worker</code>, a part of the thread's name. They can
        stand together.
      </p>
      <h3>Figures</h3>
      <p>
        Limited to the visible range, statistics count the intervals that lie in it at least in part, and
        their time in it; averages and extremes are of their whole lengths. A block that was never closed is
        hatched and drawn to the end of the block around it: it is counted, and left out of mean, median,
        extremes and deviation. Time stamps have six digits: the status line tells what that means where you
        look.
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
