// A profile record as it was read, before anything is derived from it.

/** A name under one parent. Blocks stand in the order of the file, so a parent comes before its children. */
export interface RawBlock {
  /** Index into `RawRecord.names`. */
  name: number;
  thread: number;
  /** Index of the enclosing block, -1 at the top. */
  parent: number;
  depth: number;
  /** Its intervals are `first` to `first + count - 1` of the record's columns, in the order of their beginning. */
  first: number;
  count: number;
}

/** Something that could not be read. `where` is a line ("line 12") or a place in the script's list. */
export interface Problem {
  where: string;
  what: string;
}

export interface RawRecord {
  /** Each name once, one character for each byte of the file. */
  names: string[];
  /** Names of the threads, in the same form. */
  threads: string[];
  blocks: RawBlock[];
  /** Milliseconds; an end of 0 may be an interval that was never closed. */
  begin: Float64Array;
  end: Float64Array;
  problems: Problem[];
  /** Problems that came after the list was full. */
  moreProblems: number;
  /** Of another program: times have all their digits, not the six of the library's records. */
  exact?: true;
}

/** A file that is no record at all. Its message is a sentence for the user. */
export class NoRecord extends Error {}
