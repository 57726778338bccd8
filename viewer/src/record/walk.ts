// Goes through one thread as it ran: each interval begins and ends, properly nested.
import type { Profile } from './profile';

/** The intervals directly inside each one, in time order, as a list of lists. */
class Inner {
  private readonly starts: Int32Array;
  private readonly members: Int32Array;

  constructor(profile: Profile) {
    const count = profile.begin.length;
    this.starts = new Int32Array(count + 1);
    for (let id = 0; id < count; ++id)
      if (profile.parent[id]! >= 0) this.starts[profile.parent[id]! + 1]! += 1;
    for (let id = 0; id < count; ++id) this.starts[id + 1]! += this.starts[id]!;
    this.members = new Int32Array(this.starts[count]!);
    const next = this.starts.slice();
    for (let id = 0; id < count; ++id) {
      const parent = profile.parent[id]!;
      if (parent >= 0) this.members[next[parent]!++] = id;
    }
  }

  of(id: number): Int32Array {
    return this.members.subarray(this.starts[id], this.starts[id + 1]);
  }
}

export class Walker {
  private readonly inner: Inner;

  constructor(private readonly profile: Profile) {
    this.inner = new Inner(profile);
  }

  /** The intervals directly inside `id`, in time order. */
  innerOf(id: number): Int32Array {
    return this.inner.of(id);
  }

  /** Those at the top of a thread, and those below that no interval contains. */
  topOf(thread: number): number[] {
    const top: number[] = [];
    for (const row of this.profile.threads[thread]!.rows)
      for (let id = row.first; id < row.first + row.count; ++id)
        if (this.profile.parent[id]! < 0) top.push(id);
    return top;
  }

  walk(thread: number, begin: (id: number) => void, end: (id: number) => void): void {
    const top = this.topOf(thread);
    const levels: { list: ArrayLike<number>; next: number; id: number }[] = [{ list: top, next: 0, id: -1 }];
    for (let level; (level = levels[levels.length - 1]);) {
      if (level.next < level.list.length) {
        const id = level.list[level.next++]!;
        begin(id);
        levels.push({ list: this.inner.of(id), next: 0, id });
      } else {
        if (level.id >= 0) end(level.id);
        levels.pop();
      }
    }
  }
}
