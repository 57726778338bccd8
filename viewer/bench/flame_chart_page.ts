// Runs in the page: hands the library to the measurement.
import * as library from 'flame-chart-js';

(window as unknown as { library: unknown }).library = library;
