import { exportsOpen } from './toolbar';
import { currentChart, fitSelection, goToThread, moveSelection } from './navigation';
import * as state from './state';

/** Element ids that keys go to. */
export const searchId = 'search';
export const openId = 'open';

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
  n: () => goToThread(1),
  p: () => goToThread(-1),
  t: () => (state.dialog.value = 'threads'),
  r: () => (state.foldRecursion.value = !state.foldRecursion.value),
  v: () => (state.onlyVisible.value = !state.onlyVisible.value),
  f: fitSelection,
  '?': () => (state.dialog.value = 'help'),
};

const arrows: Record<string, 'left' | 'right' | 'up' | 'down'> = {
  ArrowLeft: 'left',
  ArrowRight: 'right',
  ArrowUp: 'up',
  ArrowDown: 'down',
};

const arrowMoves: Record<string, keyof typeof moves> = { left: 'a', right: 'd', up: 'w', down: 's' };

/** Takes the keys of the page; gives whether the key was one of them. */
function take(event: KeyboardEvent): boolean {
  if (event.ctrlKey || event.metaKey) {
    if (event.key === 'f') focusOn(searchId);
    else if (event.key === 'o') document.getElementById(openId)?.click();
    else return false;
    return true;
  }
  if (event.altKey) return false;
  if (event.key === 'Escape') {
    if (exportsOpen.value) exportsOpen.value = false;
    else if (isTyping(event.target)) leaveSearch(event.target as HTMLElement);
    else if (state.search.value) state.search.value = '';
    else state.select(undefined, undefined);
    return true;
  }
  if (isTyping(event.target)) return false;
  const way = arrows[event.key];
  if (way) {
    if (!currentChart()) return false;
    if (event.shiftKey && state.view.value === 'timeline') moveSelection(way);
    else moves[arrowMoves[way]!]!();
    return true;
  }
  if (event.key === 'Enter' && event.target instanceof HTMLCanvasElement) {
    fitSelection();
    return true;
  }
  const move = moves[event.key];
  move?.();
  return move !== undefined;
}

function isTyping(target: EventTarget | null): boolean {
  if (target instanceof HTMLInputElement) return target.type !== 'checkbox' && target.type !== 'file';
  return target instanceof HTMLSelectElement || target instanceof HTMLTextAreaElement;
}

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
}
