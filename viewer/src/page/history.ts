/** Places that one can go back to, and forward again. */
export class History<Place> {
  private places: Place[] = [];
  private at = -1;

  constructor(
    private readonly same: (a: Place, b: Place) => boolean,
    private readonly most = 200,
  ) {}

  clear(): void {
    this.places = [];
    this.at = -1;
  }

  /** Comes to a place; what lay ahead is forgotten. The place where one is already is kept as it is now. */
  visit(place: Place): void {
    const here = this.places[this.at];
    if (here !== undefined && this.same(here, place)) return void (this.places[this.at] = place);
    this.places.splice(this.at + 1, Infinity, place);
    if (this.places.length > this.most) this.places.shift();
    this.at = this.places.length - 1;
  }

  /** The place one step back (-1) or forward (1); undefined at the end. */
  go(step: 1 | -1): Place | undefined {
    const place = this.places[this.at + step];
    if (place !== undefined) this.at += step;
    return place;
  }

  get canGoBack(): boolean {
    return this.at > 0;
  }

  get canGoForward(): boolean {
    return this.at < this.places.length - 1;
  }
}
