import {importRows, restoreImported} from '../state/transfer';
import {FileCard} from './parts/FileCard';

export const Import = () => <FileCard id="import" purpose="file" choose="import.choose"
  go="import.goCount" onGo={importRows} onRestore={restoreImported} />;
