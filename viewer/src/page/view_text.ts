// The text of a view that was kept. It may come from anybody, so that all of it is looked at before it is used.
import { encodings } from '../record/bytes';
import type { Range } from '../record/statistics';
import type { List, Note, ThreadOrder, View } from './state';

/** Threads are named as in the record, with "(2)" and so on for those of the same name; names are its bytes. */
export interface KeptView {
  kind: 'kexlib profile view';
  record: string;
  view: View;
  range: Range;
  scroll: number;
  thread: string | undefined;
  order: ThreadOrder;
  ownOrder: string[];
  hidden: string[];
  collapsed: string[];
  pinned: string[];
  renamed: [string, string][];
  search: string;
  inView: boolean;
  fold: boolean;
  encoding: string;
  /** An interval if it has a thread, otherwise a name, or a box of the flame graph. */
  selected:
    | {
        path: string[];
        thread?: string | undefined;
        begin?: number | undefined;
        nth?: number | undefined;
        ofTree?: boolean | undefined;
      }
    | undefined;
  span: Range | undefined;
  notes: Note[];
  list: List | undefined;
}

/** A text that is no view. Its message is a sentence for the user. */
export class NoView extends Error {}

export function isViewText(text: string): boolean {
  return /^\s*\{\s*"kind"\s*:\s*"kexlib profile view"/.test(text);
}

/** Throws NoView where the text is none; what is missing or wrong in one is as in a record just opened. */
export function readView(text: string): KeptView {
  let parsed: unknown;
  try {
    parsed = JSON.parse(text);
  } catch {
    throw new NoView('The file of the view is damaged.');
  }
  const fields = fieldsOf(parsed);
  if (fields.kind !== 'kexlib profile view') throw new NoView('This is no file of a view.');
  const selected = fieldsOf(fields.selected);
  const path = textsOf(selected.path);
  return {
    kind: 'kexlib profile view',
    record: textOf(fields.record) ?? '',
    view: oneOf(fields.view, ['timeline', 'flame', 'statistics', 'compare', 'tree'], 'timeline'),
    range: rangeOf(fields.range) ?? { from: 0, to: Number.MAX_VALUE },
    scroll: numberOf(fields.scroll) ?? 0,
    thread: textOf(fields.thread),
    order: oneOf(fields.order, ['begin', 'activity', 'id', 'own'], 'begin'),
    ownOrder: textsOf(fields.ownOrder),
    hidden: textsOf(fields.hidden),
    collapsed: textsOf(fields.collapsed),
    pinned: textsOf(fields.pinned),
    renamed: listOf(fields.renamed).flatMap((pair) => {
      const [key, name] = textsOf(pair);
      return key !== undefined && name !== undefined ? [[key, name] as [string, string]] : [];
    }),
    search: textOf(fields.search) ?? '',
    inView: fields.inView === true,
    fold: fields.fold === true,
    encoding: oneOf(
      fields.encoding,
      encodings.map(([name]) => name),
      'utf-8',
    ),
    selected:
      path.length > 0
        ? {
            path,
            thread: textOf(selected.thread),
            begin: numberOf(selected.begin),
            nth: numberOf(selected.nth),
            ofTree: selected.ofTree === true,
          }
        : undefined,
    span: rangeOf(fields.span),
    notes: listOf(fields.notes).flatMap((note) => {
      const range = rangeOf(note);
      const text = textOf(fieldsOf(note).text);
      return range && text !== undefined ? [{ ...range, text }] : [];
    }),
    list: ([...viewNames] as unknown[]).includes(fields.list) ? (fields.list as List) : undefined,
  };
}

/** The lists that a view may have open. */
export const viewNames: readonly List[] = ['name', 'hits', 'span', 'notes'];

const fieldsOf = (value: unknown): Record<string, unknown> =>
  typeof value === 'object' && value !== null ? (value as Record<string, unknown>) : {};
const listOf = (value: unknown): unknown[] => (Array.isArray(value) ? value : []);
const textOf = (value: unknown) => (typeof value === 'string' ? value : undefined);
const textsOf = (value: unknown) => listOf(value).filter((text) => typeof text === 'string');
const numberOf = (value: unknown) =>
  typeof value === 'number' && value >= 0 && value < Infinity ? value : undefined;

function rangeOf(value: unknown): Range | undefined {
  const from = numberOf(fieldsOf(value).from);
  const to = numberOf(fieldsOf(value).to);
  return from !== undefined && to !== undefined && from <= to ? { from, to } : undefined;
}

function oneOf<T extends string>(value: unknown, all: readonly T[], otherwise: T): T {
  return all.includes(value as T) ? (value as T) : otherwise;
}
