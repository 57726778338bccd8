import { useLayoutEffect, useRef } from 'preact/hooks';
import { hideThread, moveThread, toggleCollapsed, togglePinned } from './navigation';
import * as state from './state';

/** What can be done with the lane whose title was asked. */
export function LaneMenu() {
  const place = state.laneMenu.value;
  const menu = useRef<HTMLDivElement>(null);
  useLayoutEffect(() => menu.current?.querySelector('button')?.focus(), [place]);
  if (!place || state.menu.value !== 'lane') return null;
  const { thread, x, y } = place;
  const entries: [string, () => void][] = [
    [state.collapsed.value.has(thread) ? 'Unfold' : 'Fold', () => toggleCollapsed(thread)],
    [state.pinned.value.has(thread) ? 'Unpin' : 'Pin to the top', () => togglePinned(thread)],
    ['Move up', () => moveThread(thread, -1)],
    ['Move down', () => moveThread(thread, 1)],
    ['Hide', () => hideThread(thread)],
    ['Name…', () => (state.dialog.value = 'threads')],
  ];
  return (
    <div
      class="menu lane-menu"
      style={{ left: `${x}px`, top: `${y}px` }}
      onFocusOut={({ currentTarget, relatedTarget }) => {
        if (!currentTarget.contains(relatedTarget as Node | null)) state.menu.value = undefined;
      }}
    >
      <div role="menu" aria-label={state.threadName(thread)} ref={menu}>
        {entries.map(([label, act]) => (
          <button
            role="menuitem"
            onClick={() => {
              state.menu.value = undefined;
              act();
            }}
          >
            {label}
          </button>
        ))}
      </div>
    </div>
  );
}
