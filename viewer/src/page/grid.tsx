import { elementScroll, observeElementOffset, observeElementRect, Virtualizer } from '@tanstack/virtual-core';
import { useEffect, useId, useReducer, useRef, useState } from 'preact/hooks';
import type { ComponentChildren } from 'preact';

export interface GridColumn {
  id: string;
  title: string;
  hint?: string | undefined;
}

interface Properties {
  label: string;
  columns: readonly GridColumn[];
  sorted: { id: string; desc: boolean };
  onSort: (id: string) => void;
  count: number;
  /** What is in the cells of a row. */
  cells: (index: number) => ComponentChildren[];
  /** The row as text, for the clipboard. */
  copy: (index: number) => string[];
  /** -1 if none is. */
  selected: number;
  onSelect: (index: number) => void;
  /** Enter or a double click. */
  onOpen?: ((index: number) => void) | undefined;
  /** Other keys on the selected row; gives whether it took one. */
  onKey?: ((key: string, index: number) => boolean) | undefined;
  empty: ComponentChildren;
}

const lineHeight = 26;
/** The least that columns are wide; in less room the name has a line of its own, and the figures one or more. */
const nameWidth = 170;
const figureWidth = 76;
const narrowFigureWidth = 62;
const narrowLineHeight = 20;

/** Rows of any number: only those in view are elements. Arrow keys move the selection. */
export function Grid(properties: Properties) {
  const { label, columns, sorted, onSort, count, cells, copy, selected, onSelect, onOpen, empty } =
    properties;
  const frame = useRef<HTMLDivElement>(null);
  const id = useId();
  const width = useWidth(frame);
  const figures = columns.length - 1;
  const narrow = width > 0 && width < nameWidth + figureWidth * figures;
  const lines = narrow ? Math.min(3, Math.ceil((narrowFigureWidth * figures) / width)) : 0;
  const rowHeight = lineHeight + lines * narrowLineHeight;
  const virtualizer = useVirtualizer(frame, count, rowHeight);

  // The selection may come from elsewhere. A row that was clicked stays under the pointer, for the second click.
  const clicked = useRef(-1);
  useEffect(() => {
    if (selected >= 0 && selected !== clicked.current) virtualizer.scrollToIndex(selected);
    clicked.current = -1;
  }, [selected, lines]);

  const move = (to: number) => {
    if (count > 0) onSelect(Math.min(Math.max(to, 0), count - 1));
  };
  const onKeyDown = (event: KeyboardEvent) => {
    if (event.altKey || event.ctrlKey || event.metaKey || event.shiftKey) return;
    const page = Math.max(1, Math.floor((frame.current?.clientHeight ?? 0) / rowHeight) - 2);
    const steps: Record<string, number> = {
      ArrowDown: selected + 1,
      ArrowUp: selected - 1,
      PageDown: selected + page,
      PageUp: selected - page,
      Home: 0,
      End: count - 1,
    };
    if (event.key in steps) move(steps[event.key]!);
    else if (selected >= 0 && properties.onKey?.(event.key, selected)) {
      // taken
    } else if (event.key === 'Enter' && selected >= 0 && event.target === frame.current) onOpen?.(selected);
    else return;
    event.preventDefault();
  };
  const onCopy = (event: ClipboardEvent) => {
    if (selected < 0 || getSelection()?.toString()) return;
    event.clipboardData?.setData('text/plain', copy(selected).join('\t'));
    event.preventDefault();
  };

  const template = narrow
    ? {
        gridTemplateColumns: `repeat(${Math.ceil(figures / lines)}, minmax(0, 1fr))`,
      }
    : {
        gridTemplateColumns: `minmax(${nameWidth}px, 1fr) repeat(${figures}, minmax(${figureWidth}px, 92px))`,
        minWidth: `${nameWidth + figureWidth * figures}px`,
      };
  const rowId = (index: number) => `${id}-${index}`;
  const inView = virtualizer.getVirtualItems();
  return (
    <div
      class={narrow ? 'table narrow' : 'table'}
      ref={frame}
      tabIndex={0}
      role="grid"
      aria-label={label}
      aria-rowcount={count + 1}
      aria-colcount={columns.length}
      aria-activedescendant={inView.some(({ index }) => index === selected) ? rowId(selected) : undefined}
      onKeyDown={onKeyDown}
      onCopy={onCopy}
    >
      <div class="table-head" role="row" aria-rowindex={1} style={template}>
        {columns.map(({ id, title, hint }) => {
          const sort = sorted.id === id ? (sorted.desc ? 'descending' : 'ascending') : 'none';
          return (
            <div role="columnheader" aria-sort={sort}>
              <button title={hint} onClick={() => onSort(id)}>
                {title}
                {sort === 'none' ? '' : sort === 'descending' ? ' ↓' : ' ↑'}
              </button>
            </div>
          );
        })}
      </div>
      {count === 0 && <p class="empty">{empty}</p>}
      <div role="rowgroup" style={{ height: `${virtualizer.getTotalSize()}px`, position: 'relative' }}>
        {inView.map(({ index, start }) =>
          index < count ? (
            <div
              key={index}
              id={rowId(index)}
              class="table-row"
              role="row"
              aria-rowindex={index + 2}
              aria-selected={index === selected}
              style={{ ...template, height: `${rowHeight}px`, transform: `translateY(${start}px)` }}
              onClick={() => {
                clicked.current = index;
                onSelect(index);
              }}
              onDblClick={() => onOpen?.(index)}
            >
              {cells(index).map((cell) => (
                <span role="gridcell">{cell}</span>
              ))}
            </div>
          ) : null,
        )}
      </div>
    </div>
  );
}

function useWidth(frame: { current: HTMLElement | null }): number {
  const [width, setWidth] = useState(0);
  useEffect(() => {
    const observer = new ResizeObserver(() => setWidth(frame.current?.clientWidth ?? 0));
    observer.observe(frame.current!);
    return () => observer.disconnect();
  }, []);
  return width;
}

function useVirtualizer(frame: { current: HTMLDivElement | null }, count: number, rowHeight: number) {
  const [, redraw] = useReducer((times: number, _: void) => times + 1, 0);
  const options = {
    count,
    getScrollElement: () => frame.current,
    estimateSize: () => rowHeight,
    overscan: 8,
    observeElementRect,
    observeElementOffset,
    scrollToFn: elementScroll,
    scrollPaddingStart: lineHeight + 4,
    onChange: () => redraw(),
  };
  const [virtualizer] = useState(() => new Virtualizer<HTMLDivElement, Element>(options));
  virtualizer.setOptions(options);
  const measured = useRef(rowHeight);
  if (measured.current !== rowHeight) {
    measured.current = rowHeight;
    virtualizer.measure();
  }
  useEffect(() => virtualizer._didMount(), []);
  useEffect(() => virtualizer._willUpdate());
  return virtualizer;
}
