// Long work in slices, between which the page lives.

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
