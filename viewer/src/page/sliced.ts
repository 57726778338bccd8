// Long work in slices, between which the page lives.
import { computed, effect, signal, untracked, type ReadonlySignal } from '@preact/signals';

/** Milliseconds of one slice: less than the time of a picture. */
const slice = 10;

const pause = () =>
  new Promise<void>((resolve) => {
    const channel = new MessageChannel();
    channel.port1.onmessage = () => {
      channel.port1.close();
      resolve();
    };
    channel.port2.postMessage(undefined);
  });

/** Runs work to its end unless `signal` ends it. What takes no more than a slice is done when this returns. */
export function runSliced<T>(
  work: Generator<void, T>,
  signal: AbortSignal,
  done: (result: T) => void,
): Promise<void> | undefined {
  const oneSlice = (): boolean => {
    const until = performance.now() + slice;
    for (;;) {
      const step = work.next();
      if (step.done) {
        done(step.value);
        return true;
      }
      if (performance.now() >= until) return false;
    }
  };
  if (oneSlice()) return undefined;
  return (async () => {
    do {
      await pause();
      if (signal.aborted) return;
    } while (!oneSlice());
  })();
}

/**
 * What work gives that is begun anew whenever a signal changes that `begin` reads; undefined while it is under way, and
 * where there is none. It waits for its beginning until it is seen for the first time.
 */
export function slicedSignal<T>(
  begin: () => Generator<void, T> | undefined,
  isSeen = () => true,
): ReadonlySignal<T | undefined> {
  const result = signal<T | undefined>(undefined);
  const wanted = computed(begin);
  let begun: Generator<void, T> | undefined;
  let stop = new AbortController();
  effect(() => {
    const work = wanted.value;
    if (work !== begun) {
      stop.abort();
      begun = undefined;
      result.value = undefined;
    }
    if (!work || work === begun || !isSeen()) return;
    begun = work;
    stop = new AbortController();
    void untracked(() => runSliced(work, stop.signal, (value) => (result.value = value)));
  });
  return result;
}
