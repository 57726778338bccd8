import { goBack, goForward } from './back_forward';
import { openId, reloadId, searchId } from './ids';
import { meaningOf } from './keys';
import { goToThread, toggleCollapsed, togglePinned } from './navigation';
import * as state from './state';
import type { Way } from './walk_intervals';
import { currentChart, fitSelection, moveSelection } from './walked';

const threadOfSelection = () => {
  const profile = state.profile.value;
  const id = state.selectedInterval.value;
  return state.currentThread.value ?? (profile && id !== undefined ? threadOf(profile, id) : undefined);
};
const threadOf = ({ blocks, block }: NonNullable<typeof state.profile.value>, id: number) =>
  blocks[block[id]!]!.thread;

const toggleList = (list: state.List) => (state.list.value = state.list.value === list ? undefined : list);

const moves: Record<string, () => void> = {
  '+': () => currentChart()?.zoom(1.5),
  '=': () => currentChart()?.zoom(1.5),
  '-': () => currentChart()?.zoom(1 / 1.5),
  '0': () => currentChart()?.all(),
  w: () => currentChart()?.scrollBy(-60),
  s: () => currentChart()?.scrollBy(60),
  a: () => currentChart()?.pan(-0.1),
  d: () => currentChart()?.pan(0.1),
  '1': () => (state.view.value = 'timeline'),
  '2': () => (state.view.value = 'flame'),
  '3': () => (state.view.value = 'statistics'),
  '4': () => (state.view.value = 'compare'),
  '5': () => (state.view.value = 'tree'),
  n: () => goToThread(1),
  p: () => goToThread(-1),
  t: () => (state.dialog.value = 'threads'),
  r: () => (state.foldRecursion.value = !state.foldRecursion.value),
  v: () => (state.onlyVisible.value = !state.onlyVisible.value),
  f: fitSelection,
  c: () => toggleCollapsed(threadOfSelection()),
  k: () => togglePinned(threadOfSelection()),
  l: () => toggleList(state.search.value && state.selectedName.value === undefined ? 'hits' : 'name'),
  h: () => toggleList('hits'),
  z: () => {
    const span = state.span.value;
    if (span) state.timeline.show(span.from, span.to);
  },
  u: () => document.getElementById(reloadId)?.click(),
  '?': () => (state.dialog.value = 'help'),
  F1: () => (state.dialog.value = 'help'),
  Backspace: goBack,
};

const arrows: Record<string, Way> = {
  ArrowLeft: 'left',
  ArrowRight: 'right',
  ArrowUp: 'up',
  ArrowDown: 'down',
};

const arrowMoves: Record<Way, string> = { left: 'a', right: 'd', up: 'w', down: 's' };

/** Takes the keys of the page; gives whether the key was one of them. */
function take(event: KeyboardEvent): boolean {
  if (event.ctrlKey || event.metaKey) {
    const letter = meaningOf(event);
    if (letter === 'f') focusOn(searchId);
    else if (letter === 'o') document.getElementById(openId)?.click();
    else return false;
    return true;
  }
  if (event.altKey) {
    if (event.key === 'ArrowLeft') goBack();
    else if (event.key === 'ArrowRight') goForward();
    else return false;
    return true;
  }
  if (event.key === 'Escape') {
    escape(event.target);
    return true;
  }
  if (isTyping(event.target)) return false;
  const way = arrows[event.key];
  if (way) {
    if (!currentChart() || isSeparator(event.target)) return false;
    if (event.shiftKey) moveSelection(way);
    else moves[arrowMoves[way]]!();
    return true;
  }
  if (event.key === 'Enter' && event.target instanceof HTMLCanvasElement) {
    fitSelection();
    return true;
  }
  const move = moves[meaningOf(event)];
  move?.();
  return move !== undefined;
}

/** Leaves what was entered last. */
function escape(target: EventTarget | null): void {
  if (state.menu.value) state.menu.value = undefined;
  else if (isTyping(target)) leaveSearch(target as HTMLElement);
  else if (state.span.value) state.span.value = undefined;
  else if (state.list.value) state.list.value = undefined;
  else if (state.search.value) state.search.value = '';
  else state.select(undefined);
}

function isTyping(target: EventTarget | null): boolean {
  if (target instanceof HTMLInputElement) return target.type !== 'checkbox' && target.type !== 'file';
  return target instanceof HTMLSelectElement || target instanceof HTMLTextAreaElement;
}

const isSeparator = (target: EventTarget | null) =>
  target instanceof HTMLElement && target.role === 'separator';

/** Back to where keys move the chart, with nothing searched for. */
function leaveSearch(target: HTMLElement): void {
  if (target.id === searchId) state.search.value = '';
  target.blur();
}

function focusOn(id: string): void {
  const element = document.getElementById(id);
  element?.focus();
  if (element instanceof HTMLInputElement) element.select();
}

export function listenToKeys(): void {
  document.addEventListener('keydown', (event) => {
    if (document.querySelector('dialog[open]') || event.defaultPrevented) return;
    if (take(event)) event.preventDefault();
  });
  // The mouse's buttons for back and forward.
  const buttons: Record<number, () => void> = { 3: goBack, 4: goForward };
  for (const type of ['mousedown', 'mouseup', 'auxclick'] as const)
    document.addEventListener(type, (event) => {
      const go = buttons[event.button];
      if (!go) return;
      event.preventDefault();
      if (type === 'mouseup') go();
    });
}
