import {
  createTable,
  getCoreRowModel,
  getSortedRowModel,
  type ColumnDef,
  type SortingState,
} from '@tanstack/table-core';
import { useMemo, useState } from 'preact/hooks';
import type { ComponentChildren } from 'preact';
import { Grid } from './grid';

export interface Column<Row> {
  id: string;
  title: string;
  hint?: string;
  /** What the column is sorted by. What is no number comes last either way. */
  value: (row: Row) => string | number | undefined;
  text: (row: Row) => string;
  /** The text, unless a cell shows more. */
  show?: (row: Row) => ComponentChildren;
}

interface Properties<Row> {
  label: string;
  rows: readonly Row[];
  columns: readonly Column<Row>[];
  sortedBy: string;
  isSelected: (row: Row) => boolean;
  onSelect: (row: Row) => void;
  /** Enter or a double click. */
  onOpen?: (row: Row) => void;
  empty: ComponentChildren;
}

/** A table that is sorted by its columns. Rows and columns are remembered by the caller: what changes is new. */
export function Table<Row>(properties: Properties<Row>) {
  const { label, rows, columns, sortedBy, isSelected, onSelect, onOpen, empty } = properties;
  const [sorting, setSorting] = useState<SortingState>([{ id: sortedBy, desc: true }]);
  const sorted = useMemo(() => sort(rows, columns, sorting), [rows, columns, sorting]);
  const cellsOf = (row: Row) => columns.map((column) => column.show?.(row) ?? column.text(row));
  return (
    <Grid
      label={label}
      columns={columns}
      sorted={sorting[0]!}
      onSort={(id) =>
        setSorting(([current]) => [{ id, desc: current?.id === id ? !current.desc : id !== columns[0]!.id }])
      }
      count={sorted.length}
      cells={(index) => cellsOf(sorted[index]!)}
      copy={(index) => columns.map((column) => column.text(sorted[index]!))}
      selected={sorted.findIndex(isSelected)}
      onSelect={(index) => onSelect(sorted[index]!)}
      onOpen={onOpen && ((index) => onOpen(sorted[index]!))}
      empty={empty}
    />
  );
}

function sort<Row>(rows: readonly Row[], columns: readonly Column<Row>[], sorting: SortingState): Row[] {
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
    data: rows as Row[],
    columns: definitions,
    state: { sorting, columnPinning: {} },
    getCoreRowModel: getCoreRowModel(),
    getSortedRowModel: getSortedRowModel(),
    onStateChange: () => {},
    renderFallbackValue: null,
  });
  return table.getRowModel().rows.map((row) => row.original);
}
