// QR codes, which few need: a script of its own.
import {correction, generate} from 'lean-qr/nano';
import {giveEncoder} from '../state/encoder';

giveEncoder((text) => generate(text, {minCorrectionLevel: correction.M}));
