import { render } from 'preact';
import './style.css';
import { App } from './app';
import { listenToKeys } from './keyboard';
import { openScript, recordBeside } from './open';

render(<App />, document.getElementById('app')!);
listenToKeys();
const { name, wanted } = recordBeside();
void openScript(name, wanted);
