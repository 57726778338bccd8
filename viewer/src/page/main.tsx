import { render } from 'preact';
import './style.css';
import { App } from './app';
import { listenToKeys } from './keyboard';
import { openScript, recordBeside } from './open';
import { runScript, scriptOfFrame } from './record_frame';

const script = scriptOfFrame();
if (script !== undefined) runScript(script);
else {
  render(<App />, document.getElementById('app')!);
  listenToKeys();
  const { name, wanted } = recordBeside();
  void openScript(name, { wanted });
}
