import {
  createTable,
  getCoreRowModel,
  getFilteredRowModel,
  getSortedRowModel,
  type ColumnDef,
  type SortingState,
} from '@tanstack/table-core';
import { elementScroll, observeElementOffset, observeElementRect, Virtualizer } from '@tanstack/virtual-core';
import { useEffect, useMemo, useReducer, useRef, useState } from 'preact/hooks';
import type { ComponentChildren } from 'preact';

export interface Column<Row> {
  id: string;
  title: string;
  hint?: string;
  /** What the column is sorted by. What is no number comes last either way. */
  value: (row: Row) => string | number | undefined;
  show: (row: Row) => ComponentChildren;
}

interface Properties<Row> {
  label: string;
  rows: Row[];
  columns: Column<Row>[];
  sortedBy: string;
  /** Text that a row is found by, and what is looked for. */
  textOf: (row: Row) => string;
  filter: string;
  isSelected: (row: Row) => boolean;
  onSelect: (row: Row) => void;
  /** Enter or a double click. */
  onOpen?: (row: Row) => void;
  empty: string;
}

const rowHeight = 26;
/** The least that columns are wide. */
const nameWidth = 170;
const figureWidth = 76;

/** A table of any length: only the rows in view are elements. Arrow keys move the selection. */
export function Table<Row>(properties: Properties<Row>) {
  const { label, rows, columns, sortedBy, textOf, filter, isSelected, onSelect, onOpen, empty } = properties;
  const [sorting, setSorting] = useState<SortingState>([{ id: sortedBy, desc: true }]);
  const frame = useRef<HTMLDivElement>(null);
  const sorted = useMemo(() => {
    const definitions: ColumnDef<Row>[] = columns.map((column) => ({
      id: column.id,
      accessorFn: (row) => {
        const value = column.value(row);
        return typeof value === 'number' && Number.isNaN(value) ? undefined : value;
      },
      sortUndefined: 'last',
      sortingFn: 'basic',
    }));
    const table = createTable<Row>({
      data: rows,
      columns: definitions,
      state: { sorting, globalFilter: filter, columnPinning: {} },
      globalFilterFn: (row, _column, text: string) =>
        textOf(row.original).toLowerCase().includes(text.toLowerCase()),
      getColumnCanGlobalFilter: () => true,
      getCoreRowModel: getCoreRowModel(),
      getSortedRowModel: getSortedRowModel(),
      getFilteredRowModel: getFilteredRowModel(),
      onStateChange: () => {},
      renderFallbackValue: null,
    });
    return table.getRowModel().rows.map((row) => row.original);
  }, [rows, columns, sorting, filter]);

  const virtualizer = useVirtualizer(frame, sorted.length);
  const items = virtualizer.getVirtualItems();
  const selected = sorted.findIndex(isSelected);

  const move = (to: number) => {
    const row = sorted[Math.min(Math.max(to, 0), sorted.length - 1)];
    if (!row) return;
    onSelect(row);
    virtualizer.scrollToIndex(sorted.indexOf(row));
  };
  const onKeyDown = (event: KeyboardEvent) => {
    const page = Math.max(1, Math.floor((frame.current?.clientHeight ?? 0) / rowHeight) - 2);
    const steps: Record<string, number> = {
      ArrowDown: selected + 1,
      ArrowUp: selected - 1,
      PageDown: selected + page,
      PageUp: selected - page,
      Home: 0,
      End: sorted.length - 1,
    };
    if (event.key in steps) move(steps[event.key]!);
    else if (event.key === 'Enter' && sorted[selected] && event.target === frame.current)
      onOpen?.(sorted[selected]);
    else return;
    event.preventDefault();
  };
  const sortBy = (id: string) =>
    setSorting(([current]) => [{ id, desc: current?.id === id ? !current.desc : id !== columns[0]!.id }]);

  const template = {
    gridTemplateColumns: `minmax(${nameWidth}px, 1fr) repeat(${columns.length - 1}, minmax(${figureWidth}px, 90px))`,
    minWidth: `${nameWidth + figureWidth * (columns.length - 1)}px`,
  };
  return (
    <div
      class="table"
      ref={frame}
      tabIndex={0}
      role="grid"
      aria-label={label}
      aria-rowcount={sorted.length}
      onKeyDown={onKeyDown}
    >
      <div class="table-head" role="row" style={template}>
        {columns.map(({ id, title, hint }) => {
          const sort = sorting[0]?.id === id ? (sorting[0].desc ? 'descending' : 'ascending') : 'none';
          return (
            <button role="columnheader" aria-sort={sort} title={hint} onClick={() => sortBy(id)}>
              {title}
              {sort === 'none' ? '' : sort === 'descending' ? ' ↓' : ' ↑'}
            </button>
          );
        })}
      </div>
      {sorted.length === 0 && <p class="empty">{empty}</p>}
      <div style={{ height: `${virtualizer.getTotalSize()}px`, position: 'relative' }}>
        {items.map(({ index, start }) => {
          const row = sorted[index];
          return (
            row && (
              <div
                key={index}
                class="table-row"
                role="row"
                aria-selected={index === selected}
                style={{ ...template, transform: `translateY(${start}px)` }}
                onClick={() => onSelect(row)}
                onDblClick={() => onOpen?.(row)}
              >
                {columns.map((column) => (
                  <span role="gridcell">{column.show(row)}</span>
                ))}
              </div>
            )
          );
        })}
      </div>
    </div>
  );
}

function useVirtualizer(frame: { current: HTMLDivElement | null }, count: number) {
  const [, redraw] = useReducer((times: number, _: void) => times + 1, 0);
  const options = {
    count,
    getScrollElement: () => frame.current,
    estimateSize: () => rowHeight,
    overscan: 8,
    observeElementRect,
    observeElementOffset,
    scrollToFn: elementScroll,
    scrollPaddingStart: rowHeight + 4,
    onChange: () => redraw(),
  };
  const [virtualizer] = useState(() => new Virtualizer<HTMLDivElement, Element>(options));
  virtualizer.setOptions(options);
  useEffect(() => virtualizer._didMount(), []);
  useEffect(() => virtualizer._willUpdate());
  return virtualizer;
}
