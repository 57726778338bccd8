/** The first index from `first` to `stop` whose value is not below `value`; `stop` if there is none. */
export function lowerBound(column: Float64Array, first: number, stop: number, value: number): number {
  return firstWhere(first, stop, (index) => column[index]! >= value);
}

/** The first index from `first` to `stop` for which `holds`, which then does so for all that follow. */
export function firstWhere(first: number, stop: number, holds: (index: number) => boolean): number {
  let low = first;
  let high = stop;
  while (low < high) {
    const middle = (low + high) >>> 1;
    if (holds(middle)) high = middle;
    else low = middle + 1;
  }
  return low;
}
