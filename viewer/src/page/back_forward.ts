// Back and forward through what was looked at.
import { batch, effect } from '@preact/signals';
import type { Range } from '../record/statistics';
import { History } from './history';
import * as state from './state';

interface Place {
  view: state.View;
  timeline: Range;
  flame: Range;
  scroll: number;
  name: number | undefined;
  interval: number | undefined;
  path: readonly number[] | undefined;
  thread: number | undefined;
}

function here(): Place {
  return {
    view: state.view.value,
    timeline: state.timeline.range.value,
    flame: state.flame.range.value,
    scroll: state.timeline.scroll.value,
    name: state.selectedName.value,
    interval: state.selectedInterval.value,
    path: state.selectedPath.value,
    thread: state.currentThread.value,
  };
}

const sameRange = (a: Range, b: Range) => a.from === b.from && a.to === b.to;

function sameSelection(a: Place, b: Place): boolean {
  return (
    a.view === b.view &&
    a.name === b.name &&
    a.interval === b.interval &&
    a.path === b.path &&
    a.thread === b.thread
  );
}

/** Scrolling alone is no step of its own, nor is a movement of a flame graph that is not shown. */
const same = (a: Place, b: Place) =>
  sameSelection(a, b) &&
  sameRange(a.timeline, b.timeline) &&
  (a.view !== 'flame' || sameRange(a.flame, b.flame));

const history = new History<Place>(same);
/** Waits for the end of a movement: what is moved without a pause is one step. */
let pending: ReturnType<typeof setTimeout> | undefined;
const pause = 350;
/** What is selected is a step when its event has been handled: on a busy page the next input comes before timers. */
let chosen = false;
let last: Place | undefined;

effect(() => {
  const now = here();
  if (!state.opened.value) return;
  if (!chosen && (!last || !sameSelection(now, last))) {
    if (pending !== undefined && last) history.visit(last); // a selection ends the movement before it
    chosen = true;
    queueMicrotask(() => {
      if (chosen) rest();
    });
  }
  last = now;
  clearTimeout(pending);
  pending = setTimeout(rest, pause);
});

function stopWaiting(): void {
  clearTimeout(pending);
  pending = undefined;
  chosen = false;
}

function rest(): void {
  stopWaiting();
  history.visit(here());
}

/** A record that was just opened has nothing before it. */
export function startHistory(): void {
  history.clear();
  rest();
}

export function goBack(): void {
  go(-1);
}

export function goForward(): void {
  go(1);
}

function go(step: 1 | -1): void {
  if (pending !== undefined) rest();
  const place = history.go(step);
  if (!place) return;
  batch(() => {
    state.view.value = place.view;
    state.currentThread.value = place.thread;
    if (place.interval === undefined) state.select(place.name);
    else state.selectInterval(place.interval);
    state.timeline.leave(place.interval); // the place has its own range and scroll
    state.selectedPath.value = place.path;
    state.timeline.range.value = place.timeline;
    if (place.view === 'flame') state.flame.range.value = place.flame;
    state.timeline.scroll.value = place.scroll;
  });
  // What was just gone to is where one is.
  stopWaiting();
}
