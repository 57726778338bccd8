import { signal } from '@preact/signals';
import { encodings } from '../record/bytes';
import { exportAs, type ExportKind } from './download';
import { formatCount } from './format';
import { openId, searchId } from './keyboard';
import { scrollToSelection } from './navigation';
import { openFile } from './open';
import { currentHit, goToHit, hits } from './search';
import * as state from './state';

export const exportsOpen = signal(false);

const views: [state.View, string][] = [
  ['timeline', 'Timeline'],
  ['flame', 'Flame graph'],
  ['statistics', 'Statistics'],
  ['compare', 'Compare'],
];

const exportKinds: [ExportKind, string][] = [
  ['chrome', 'Chrome trace (JSON)'],
  ['speedscope', 'speedscope (JSON)'],
  ['csv', 'Statistics (CSV)'],
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
          <span class="title" title={record.title}>
            {record.title}
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
          <EncodingChoice />
        </>
      )}
      {!record && <span class="space" />}
      <ThemeChoice />
      <button title="Keys and how to read the page (?)" onClick={() => (state.dialog.value = 'help')}>
        ?
      </button>
    </header>
  );
}

interface FileButtonProperties {
  id: string;
  label: string;
  hint: string;
  onFile: (file: File) => void;
}

export function FileButton({ id, label, hint, onFile }: FileButtonProperties) {
  const inputId = `${id}-file`;
  return (
    <>
      <button id={id} title={hint} onClick={() => document.getElementById(inputId)!.click()}>
        {label}
      </button>
      <input
        id={inputId}
        type="file"
        hidden
        onChange={({ currentTarget }) => {
          const file = currentTarget.files?.[0];
          currentTarget.value = '';
          if (file) onFile(file);
        }}
      />
    </>
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

function SearchBox() {
  const found = hits.value.length;
  const place = currentHit.value + 1;
  const go = (step: 1 | -1) => {
    goToHit(step);
    scrollToSelection();
  };
  return (
    <div class="search" role="search">
      <input
        id={searchId}
        type="search"
        placeholder="Search names (Ctrl+F)"
        aria-label="Search names"
        value={state.search.value}
        onInput={({ currentTarget }) => (state.search.value = currentTarget.value)}
        onKeyDown={(event) => {
          if (event.key !== 'Enter') return;
          event.preventDefault();
          go(event.shiftKey ? -1 : 1);
        }}
      />
      {state.search.value && (
        <>
          <span class="hits" aria-live="polite">
            {place > 0 ? `${formatCount(place)} of ` : ''}
            {formatCount(found)}
          </span>
          <button title="The one before (Shift+Enter)" disabled={found === 0} onClick={() => go(-1)}>
            ‹
          </button>
          <button title="The next one (Enter)" disabled={found === 0} onClick={() => go(1)}>
            ›
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
  return (
    <div
      class="menu"
      onFocusOut={({ currentTarget, relatedTarget }) => {
        if (!currentTarget.contains(relatedTarget as Node | null)) exportsOpen.value = false;
      }}
    >
      <button
        aria-haspopup="menu"
        aria-expanded={exportsOpen.value}
        onClick={() => (exportsOpen.value = !exportsOpen.value)}
      >
        Export
      </button>
      {exportsOpen.value && (
        <div role="menu">
          {exportKinds.map(([kind, label]) => (
            <button
              role="menuitem"
              onClick={() => {
                exportsOpen.value = false;
                exportAs(kind);
              }}
            >
              {label}
            </button>
          ))}
        </div>
      )}
    </div>
  );
}

function EncodingChoice() {
  return (
    <select
      aria-label="Encoding of names"
      title="The code page that the program wrote its names in"
      value={state.encoding.value}
      onChange={({ currentTarget }) => (state.encoding.value = currentTarget.value)}
    >
      {encodings.map(([value, label]) => (
        <option value={value}>{label}</option>
      ))}
    </select>
  );
}

function ThemeChoice() {
  return (
    <select
      aria-label="Colours"
      title="Colours"
      value={state.theme.value}
      onChange={({ currentTarget }) => (state.theme.value = currentTarget.value as typeof state.theme.value)}
    >
      <option value="auto">Auto</option>
      <option value="light">Light</option>
      <option value="dark">Dark</option>
    </select>
  );
}
