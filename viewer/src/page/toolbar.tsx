import { goBack, goForward } from './back_forward';
import { ThemeChoice } from './choices';
import { exportAs, hasPicture, type ExportKind } from './download';
import { FileButton } from './file_button';
import { formatCount } from './format';
import { openId, reloadId, searchId } from './ids';
import { openFile, reload } from './open';
import { currentHit, fault, goToHit, hits } from './search';
import * as state from './state';

const views: [state.View, string][] = [
  ['timeline', 'Timeline'],
  ['flame', 'Flame graph'],
  ['statistics', 'Statistics'],
  ['compare', 'Compare'],
  ['tree', 'Call tree'],
];

const exportKinds: [ExportKind, string][] = [
  ['chrome', 'Chrome trace (JSON)'],
  ['speedscope', 'speedscope (JSON)'],
  ['csv', 'Statistics (CSV)'],
  ['png', 'Picture of the view (PNG)'],
  ['svg', 'Picture of the view (SVG)'],
  ['view', 'View with notes (file)'],
];

export function Toolbar() {
  const record = state.opened.value;
  return (
    <header class="toolbar">
      <FileButton
        id={openId}
        label="Open…"
        hint="Open a record (Ctrl+O)"
        onFile={(file) => void openFile(file)}
      />
      {record && (
        <>
          <button
            id={reloadId}
            title="Read the file again and keep the view (u)"
            onClick={() => void reload()}
          >
            ⟳
          </button>
          <span class="title" title={record.title}>
            {record.title}
          </span>
          <span class="views">
            <button title="Back (Backspace, Alt+Left)" aria-label="Back" onClick={goBack}>
              ←
            </button>
            <button title="Forward (Alt+Right)" aria-label="Forward" onClick={goForward}>
              →
            </button>
          </span>
          <Views />
          <SearchBox />
          <Toggle
            label="In view"
            hint="Limit figures to the visible range of the timeline (v)"
            on={state.onlyVisible.value}
            onChange={(on) => (state.onlyVisible.value = on)}
          />
          <Toggle
            label="Fold"
            hint="Count a name inside itself once (r)"
            on={state.foldRecursion.value}
            onChange={(on) => (state.foldRecursion.value = on)}
          />
          <span class="space" />
          <button title="Threads: order, names, hide (t)" onClick={() => (state.dialog.value = 'threads')}>
            Threads
          </button>
          <Exports />
        </>
      )}
      {!record && (
        <>
          <span class="space" />
          <ThemeChoice />
        </>
      )}
      <button title="Keys and how to read the page (?)" onClick={() => (state.dialog.value = 'help')}>
        ?
      </button>
    </header>
  );
}

function Views() {
  return (
    <div class="views" role="tablist" aria-label="View">
      {views.map(([view, label], index) => (
        <button
          role="tab"
          aria-selected={state.view.value === view}
          title={`${label} (${index + 1})`}
          onClick={() => (state.view.value = view)}
        >
          {label}
        </button>
      ))}
    </div>
  );
}

const searchHint = `Part of a name, or /a regular expression/; lengths such as "> 5 ms"; thread:NAME (Ctrl+F)`;

function SearchBox() {
  const { found, done } = hits.value;
  const place = currentHit.value + 1;
  const wrong = fault.value;
  const none = wrong !== undefined || (done && found === 0);
  return (
    <div class="search" role="search">
      <input
        id={searchId}
        type="search"
        placeholder="Search: name, /regexp/, > 5 ms"
        aria-label="Search names"
        aria-invalid={wrong !== undefined}
        title={wrong ?? searchHint}
        value={state.search.value}
        onInput={({ currentTarget }) => (state.search.value = currentTarget.value)}
        onKeyDown={(event) => {
          if (event.key !== 'Enter') return;
          event.preventDefault();
          void goToHit(event.shiftKey ? -1 : 1);
        }}
      />
      {state.search.value && (
        <>
          <span class="hits" aria-live="polite">
            {wrong
              ? 'not understood'
              : (place > 0 ? `${formatCount(place)} of ` : '') + formatCount(found) + (done ? '' : '…')}
          </span>
          <button title="The one before (Shift+Enter)" disabled={none} onClick={() => void goToHit(-1)}>
            ‹
          </button>
          <button title="The next one (Enter)" disabled={none} onClick={() => void goToHit(1)}>
            ›
          </button>
          <button
            title="All hits (h)"
            aria-label="All hits"
            aria-pressed={state.list.value === 'hits'}
            onClick={() => (state.list.value = state.list.value === 'hits' ? undefined : 'hits')}
          >
            ☰
          </button>
        </>
      )}
    </div>
  );
}

interface ToggleProperties {
  label: string;
  hint: string;
  on: boolean;
  onChange: (on: boolean) => void;
}

function Toggle({ label, hint, on, onChange }: ToggleProperties) {
  return (
    <label class="toggle" title={hint}>
      <input type="checkbox" checked={on} onChange={({ currentTarget }) => onChange(currentTarget.checked)} />
      {label}
    </label>
  );
}

function Exports() {
  const open = state.menu.value === 'export';
  const choose = (act: () => void) => {
    state.menu.value = undefined;
    act();
  };
  return (
    <div
      class="menu"
      onFocusOut={({ currentTarget, relatedTarget }) => {
        if (open && !currentTarget.contains(relatedTarget as Node | null)) state.menu.value = undefined;
      }}
    >
      <button
        aria-haspopup="menu"
        aria-expanded={open}
        onClick={() => (state.menu.value = open ? undefined : 'export')}
      >
        Export
      </button>
      {open && (
        <div role="menu">
          {exportKinds.map(([kind, label]) => (
            <button
              role="menuitem"
              disabled={(kind === 'png' || kind === 'svg') && !hasPicture()}
              onClick={() => choose(() => exportAs(kind))}
            >
              {label}
            </button>
          ))}
          <button role="menuitem" onClick={() => choose(() => (state.dialog.value = 'share'))}>
            Link to the view…
          </button>
        </div>
      )}
    </div>
  );
}
